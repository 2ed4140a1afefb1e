#pragma once

#include <log/log.h>
#include <utils/Errors.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <type_traits>
#include <vector>

namespace android::hardware {

class Parcel;

/**
 * A sequence in the layout that travels between processes. It owns its elements or refers to some that
 * outlive it (a received sequence refers to the message). At most UINT32_MAX elements; asking for more ends
 * the process.
 */
template <typename T>
class hidl_vec {
  public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = const T*;

    hidl_vec() = default;
    hidl_vec(std::initializer_list<T> list) { assign(list.begin(), list.end()); }
    hidl_vec(const std::vector<T>& other) {  // NOLINT(google-explicit-constructor)
        assign(other.begin(), other.end());
    }
    template <typename Iterator, typename = typename std::iterator_traits<Iterator>::iterator_category>
    hidl_vec(Iterator first, Iterator last) {
        assign(first, last);
    }
    hidl_vec(const hidl_vec& other) { assign(other.begin(), other.end()); }
    hidl_vec(hidl_vec&& other) noexcept { take(other); }
    ~hidl_vec() { release(); }

    hidl_vec& operator=(const hidl_vec& other) {
        if (this != &other) {
            assign(other.begin(), other.end());
        }
        return *this;
    }
    hidl_vec& operator=(hidl_vec&& other) noexcept {
        if (this != &other) {
            release();
            take(other);
        }
        return *this;
    }
    hidl_vec& operator=(std::initializer_list<T> list) {
        assign(list.begin(), list.end());
        return *this;
    }
    hidl_vec& operator=(const std::vector<T>& other) {
        assign(other.begin(), other.end());
        return *this;
    }

    operator std::vector<T>() const { return {begin(), end()}; }  // NOLINT(google-explicit-constructor)

    size_t size() const { return mSize; }
    bool empty() const { return mSize == 0; }
    T* data() { return mBuffer; }
    const T* data() const { return mBuffer; }
    /** The index is not checked. */
    T& operator[](size_t index) { return mBuffer[index]; }
    const T& operator[](size_t index) const { return mBuffer[index]; }
    iterator begin() { return mBuffer; }
    iterator end() { return mBuffer + mSize; }
    const_iterator begin() const { return mBuffer; }
    const_iterator end() const { return mBuffer + mSize; }

    /** Keeps what fits, of owned and foreign elements alike; new elements are zero or default-constructed. */
    void resize(size_t size) {
        T* buffer = allocate(size);
        if (buffer != nullptr) {
            std::move(begin(), begin() + std::min<size_t>(mSize, size), buffer);
        }
        own(buffer, size);
    }

    /** Refers to elements that outlive this sequence or its next change; owns them (delete[]) if asked to. */
    void setToExternal(T* data, size_t size, bool shouldOwn = false) {
        checkSize(size);
        release();
        mBuffer = data;
        mSize = static_cast<uint32_t>(size);
        mOwnsBuffer = shouldOwn;
    }

    bool operator==(const hidl_vec& other) const {
        return std::equal(begin(), end(), other.begin(), other.end());
    }
    bool operator!=(const hidl_vec& other) const { return !(*this == other); }

  private:
    template <typename U>
    friend status_t readEmbeddedFromParcel(hidl_vec<U>& vec, const Parcel& parcel, size_t parentHandle,
                                           size_t parentOffset, size_t* handle);

    static void checkSize(size_t size) {
        LOG_ALWAYS_FATAL_IF(size > UINT32_MAX, "hidl_vec: %zu elements are more than it can hold", size);
    }

    static T* allocate(size_t size) {
        checkSize(size);
        return size == 0 ? nullptr : new T[size]();
    }

    template <typename Iterator>
    void assign(Iterator first, Iterator last) {
        const size_t size = static_cast<size_t>(std::distance(first, last));
        T* buffer = allocate(size);
        if (buffer != nullptr) {
            std::copy(first, last, buffer);
        }
        own(buffer, size);
    }

    void own(T* buffer, size_t size) {
        release();
        mBuffer = buffer;
        mSize = static_cast<uint32_t>(size);
        mOwnsBuffer = true;
    }

    void take(hidl_vec& other) {
        mBuffer = other.mBuffer;
        mSize = other.mSize;
        mOwnsBuffer = other.mOwnsBuffer;
        other.mBuffer = nullptr;
        other.mSize = 0;
        other.mOwnsBuffer = false;
    }

    void release() {
        if (mOwnsBuffer) {
            delete[] mBuffer;
        }
    }

    alignas(8) T* mBuffer = nullptr;
    uint32_t mSize = 0;
    bool mOwnsBuffer = false;
    uint8_t mPad[3] = {};  // sent with the rest, so never left unset
};
static_assert(sizeof(hidl_vec<char>) == 16, "the layout is part of the wire format");

}  // namespace android::hardware
