#pragma once

#include <hidl/HidlSupport.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
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

    /// A null buffer, for one that not every call needs.
    Scratch() = default;

    /// Every byte is zero. What is large comes as fresh pages of the kernel's, which cost nothing until they
    /// are touched: a client that asks for gigabytes does not make the service write them.
    [[nodiscard]] static Scratch zeroed(uint64_t count) {
        return Scratch(countable(count) ? std::calloc(atLeastOne(count), sizeof(T)) : nullptr, count);
    }

    /// Indeterminate content: only for bytes that nobody reads before they were written.
    [[nodiscard]] static Scratch uncleared(uint64_t count) {
        return Scratch(countable(count) ? std::malloc(atLeastOne(count) * sizeof(T)) : nullptr, count);
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

    /// Zeroes every byte of a secret before it is freed.
    void wipe() {
        // Volatile: the compiler would drop writes that nobody reads back.
        volatile unsigned char* bytes = reinterpret_cast<unsigned char*>(get());
        std::fill_n(bytes, mCount * sizeof(T), static_cast<unsigned char>(0));
    }

  private:
    struct Free {
        void operator()(T* data) const { std::free(data); }
    };

    static constexpr bool countable(uint64_t count) { return count <= PTRDIFF_MAX / sizeof(T); }
    // A buffer for nothing is not null, which an allocator asked for 0 bytes need not see likewise.
    static constexpr size_t atLeastOne(uint64_t count) { return count == 0 ? 1 : static_cast<size_t>(count); }

    Scratch(void* data, uint64_t count)
        : mData(static_cast<T*>(data)), mCount(data != nullptr ? static_cast<size_t>(count) : 0) {}

    std::unique_ptr<T[], Free> mData;
    size_t mCount = 0;
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
