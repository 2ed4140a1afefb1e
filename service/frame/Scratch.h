#pragma once

#include <hidl/HidlSupport.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// A buffer of one call whose size a client chose: exactly the stated number of elements on the heap,
/// allocated where the object is made, so that several buffers are made in the order in which they are
/// written down, and freed with it. An allocation that is refused leaves a null buffer and throws nothing.
/// Zero elements are a buffer like any other, whose address nobody may read through.
///
///     auto pu8Data = Scratch<uint8_t>::zeroed(vecData.size());
///     if (!pu8Data) {
///         FAPI_LOGE("Allocate pu8Data failed.\n");
///         return FAPI_NO_MEMORY;
///     }
///     pu8Data.copyFrom(vecData);
///     return callChip(a_zvttvfapi_sys_write_emmc, lend(strEmmcName), u32Offset,
///                     static_cast<uint32_t>(pu8Data.size()), pu8Data);
template <typename T>
class Scratch {
  public:
    static_assert(std::is_trivially_copyable_v<T>, "the chip-layer library sees plain bytes");

    /// Every byte is zero.
    static Scratch zeroed(size_t count) {
        return Scratch(countable(count) ? new (std::nothrow) T[count]() : nullptr, count);
    }

    /// Indeterminate content: only for bytes that nobody reads before they were written.
    static Scratch uncleared(size_t count) {
        return Scratch(countable(count) ? new (std::nothrow) T[count] : nullptr, count);
    }

    explicit operator bool() const { return mData != nullptr; }

    /// The number of elements; 0 for a null buffer.
    size_t size() const { return mCount; }

    T* get() { return mData.get(); }
    T& operator[](size_t index) { return mData[index]; }
    explicit operator T*() { return get(); }
    explicit operator const T*() { return get(); }
    explicit operator void*() { return get(); }

    /// Copies the vector's first elements to the buffer's start, as many as both hold.
    void copyFrom(const ::android::hardware::hidl_vec<T>& source) {
        std::copy_n(source.data(), std::min(source.size(), mCount), get());
    }

  private:
    // A count whose bytes cannot be counted would make even the non-throwing new throw.
    static constexpr bool countable(size_t count) { return count <= PTRDIFF_MAX / sizeof(T); }

    Scratch(T* data, size_t count) : mData(data), mCount(data != nullptr ? count : 0) {}

    std::unique_ptr<T[]> mData;
    size_t mCount;
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
