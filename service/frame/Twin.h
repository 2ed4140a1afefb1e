#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

// A record or enumeration that crosses to the chip-layer library has two forms of one name, the clients' and
// fapi_core's. The chip layer's header pins its own form; these lines, beside the conversion, pin the
// clients' to it.

#define FAPI_TWIN_SIZE(Record) \
    static_assert(sizeof(Record) == sizeof(fapi_core::Record), "the twins differ in size")
#define FAPI_TWIN_FIELD(Record, field)                                           \
    static_assert(offsetof(Record, field) == offsetof(fapi_core::Record, field), \
                  "the twins differ in layout");                                 \
    static_assert(sizeof(Record::field) == sizeof(fapi_core::Record::field), "the twins differ in width")

#define FAPI_TWIN_VALUE(Enum, value)                                                                 \
    static_assert(static_cast<int64_t>(Enum::value) == static_cast<int64_t>(fapi_core::Enum::value), \
                  "the twins differ in value")

/// Copies a whole record over its twin, byte for byte. Neither has padding, so that every byte that the
/// receiver sees was written.
template <typename From, typename To>
void copyToTwin(const From& from, To& to) {
    static_assert(sizeof(From) == sizeof(To), "the twins differ in size");
    static_assert(
            std::has_unique_object_representations_v<From> && std::has_unique_object_representations_v<To>,
            "the twins have padding, or are more than plain bytes");
    std::memcpy(&to, &from, sizeof(to));
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
