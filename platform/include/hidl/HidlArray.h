#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>

namespace android::hardware {

namespace details {

constexpr size_t product(std::initializer_list<size_t> sizes) {
    size_t result = 1;
    for (const size_t size : sizes) {
        result *= size;
    }
    return result;
}

/** The type of a plain array of the given sizes. */
template <typename T, size_t First, size_t... Rest>
struct PlainArray {
    using type = typename PlainArray<T, Rest...>::type[First];
};
template <typename T, size_t First>
struct PlainArray<T, First> {
    using type = T[First];
};

/** One row of an array with several dimensions. T is const for a row of a constant array. */
template <typename T, size_t First, size_t... Rest>
class ArrayRow {
  public:
    explicit ArrayRow(T* data) : mData(data) {}

    decltype(auto) operator[](size_t index) const {
        if constexpr (sizeof...(Rest) == 0) {
            return (mData[index]);
        } else {
            return ArrayRow<T, Rest...>(mData + index * product({Rest...}));
        }
    }
    T* data() const { return mData; }
    static constexpr size_t size() { return First; }

  private:
    T* mData;
};

}  // namespace details

/** An array of fixed sizes, laid out as the plain array of the same sizes. Indexes are not checked. */
template <typename T, size_t First, size_t... Rest>
class hidl_array {
  public:
    hidl_array() = default;
    hidl_array(const typename details::PlainArray<T, First, Rest...>::type& source) {  // NOLINT(implicit)
        const T* first = reinterpret_cast<const T*>(&source);
        std::copy(first, first + kElements, mBuffer);
    }

    T* data() { return mBuffer; }
    const T* data() const { return mBuffer; }
    decltype(auto) operator[](size_t index) { return details::ArrayRow<T, First, Rest...>(mBuffer)[index]; }
    decltype(auto) operator[](size_t index) const {
        return details::ArrayRow<const T, First, Rest...>(mBuffer)[index];
    }
    /** Elements of the first dimension. */
    static constexpr size_t size() { return First; }

    bool operator==(const hidl_array& other) const {
        return std::equal(mBuffer, mBuffer + kElements, other.mBuffer);
    }
    bool operator!=(const hidl_array& other) const { return !(*this == other); }

  private:
    static constexpr size_t kElements = details::product({First, Rest...});
    T mBuffer[kElements] = {};
};

}  // namespace android::hardware
