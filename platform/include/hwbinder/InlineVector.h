#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace android::hardware {

/**
 * A growable array of plain values whose first N live inside it, so that an ordinary call allocates nothing.
 * Growth can fail and says so; what was stored stays.
 */
template <typename T, size_t N>
class InlineVector {
    static_assert(std::is_trivially_copyable_v<T>, "elements are moved with memcpy");

  public:
    InlineVector() = default;
    ~InlineVector() { clear(); }
    InlineVector(const InlineVector&) = delete;
    InlineVector& operator=(const InlineVector&) = delete;

    size_t size() const { return mSize; }
    bool empty() const { return mSize == 0; }
    T* data() { return mData; }
    const T* data() const { return mData; }
    T& operator[](size_t index) { return mData[index]; }
    const T& operator[](size_t index) const { return mData[index]; }
    const T* begin() const { return mData; }
    const T* end() const { return mData + mSize; }

    /** Adds count elements, uninitialised, and returns the first; null when there is no memory. */
    T* grow(size_t count) {
        if (count > mCapacity - mSize && !reserve(mSize + count)) {
            return nullptr;
        }
        T* first = mData + mSize;
        mSize += count;
        return first;
    }

    bool push(const T& value) {
        T* slot = grow(1);
        if (slot == nullptr) {
            return false;
        }
        *slot = value;
        return true;
    }

    /** Drops the last count elements. */
    void shrink(size_t count) { mSize -= count; }

    /** Empties it and gives back memory that it took from the heap. */
    void clear() {
        if (mData != inlineData()) {
            std::free(mData);
        }
        mData = inlineData();
        mSize = 0;
        mCapacity = N;
    }

  private:
    bool reserve(size_t wanted) {
        const size_t capacity = wanted > 2 * mCapacity ? wanted : 2 * mCapacity;
        T* data = static_cast<T*>(std::malloc(capacity * sizeof(T)));
        if (data == nullptr) {
            return false;
        }
        std::memcpy(static_cast<void*>(data), mData, mSize * sizeof(T));
        if (mData != inlineData()) {
            std::free(mData);
        }
        mData = data;
        mCapacity = capacity;
        return true;
    }

    T* inlineData() { return reinterpret_cast<T*>(mInline); }

    alignas(T) unsigned char mInline[N * sizeof(T)];
    T* mData = inlineData();
    size_t mSize = 0;
    size_t mCapacity = N;
};

}  // namespace android::hardware
