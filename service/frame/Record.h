#pragma once

#include <cstddef>
#include <cstring>
#include <type_traits>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

// A record crosses a boundary as it lies in memory, padding included, and no initialiser sets padding:
// compilers leave it as it was on the stack, even behind "= Record()". A record that goes to a client or to
// the chip-layer library is therefore cleared by one of these where it is declared, and then filled field by
// field in place: assigning or returning it whole may bring another one's padding along.
//
// In a record that comes in, a bool may be any byte, which must not be looked at as a bool. No method
// receives one; a test of the interface's table fails when that changes.

/// Zeroes every byte of a record of numbers and arrays.
template <typename Record>
void clearBytes(Record& record) {
    static_assert(std::is_trivially_copyable_v<Record>, "the record is more than plain bytes");
    std::memset(static_cast<void*>(&record), 0, sizeof(record));
}

/// Zeroes what lies between the fields of a record with texts or sequences (which leave no byte of their own
/// unset), and behind the last one. Takes all of its fields in the order of their declaration; names for them
/// are best made by a declaration that does not compile when one is missing:
///
///     auto& [u32Value, strValue, vecValue] = stRecord;
///     clearPadding(stRecord, u32Value, strValue, vecValue);
template <typename Record, typename... Fields>
void clearPadding(Record& record, const Fields&... fields) {
    auto* const bytes = reinterpret_cast<unsigned char*>(&record);
    size_t end = 0;  // of the field before
    const auto clearUpTo = [&](size_t offset) { std::memset(bytes + end, 0, offset - end); };
    const auto pass = [&](const void* field, size_t size) {
        const auto offset = static_cast<size_t>(static_cast<const unsigned char*>(field) - bytes);
        clearUpTo(offset);
        end = offset + size;
    };
    (pass(&fields, sizeof(fields)), ...);
    clearUpTo(sizeof(record));
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
