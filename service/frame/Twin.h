#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "service/frame/Convert.h"
#include "service/frame/Record.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

// A record or enumeration that crosses to the chip-layer library has two forms of one name, the clients' and
// fapi_core's. The chip layer's header pins its own form; these lines pin the clients' to it, and make the
// conversions.

#define FAPI_TWIN_VALUE(Enum, value)                                                                 \
    static_assert(static_cast<int64_t>(Enum::value) == static_cast<int64_t>(fapi_core::Enum::value), \
                  "the twins differ in value")

/// Makes the ChipTwin of a record of numbers, arrays and such records, from the names of its fields, which
/// both forms share. What no field covers is zero after either conversion: padding and reserved bytes never
/// carry what somebody left in them. A flag goes into a line of its own.
///
///     FAPI_TWIN(ZvtTvFApiColor, u16Red, u16Green, u16Blue);
///     copyTwin(stColor, stChipColor);
#define FAPI_TWIN(Record, ...)                                                                       \
    static_assert(sizeof(Record) == sizeof(fapi_core::Record), "the twins differ in size");          \
    static_assert(!std::has_unique_object_representations_v<Record> ||                               \
                          sizeof(Record) == (0 FAPI_TWIN_EACH(FAPI_TWIN_SIZE, Record, __VA_ARGS__)), \
                  "a field is missing");                                                             \
    FAPI_TWIN_EACH(FAPI_TWIN_PIN, Record, __VA_ARGS__)                                               \
    template <>                                                                                      \
    struct ChipTwin<Record> {                                                                        \
        using type = fapi_core::Record;                                                              \
        template <typename From, typename To>                                                        \
        static void copy(const From& stFrom, To& stTo) {                                             \
            clearBytes(stTo);                                                                        \
            FAPI_TWIN_EACH(FAPI_TWIN_COPY, Record, __VA_ARGS__)                                      \
        }                                                                                            \
    }

/// Pins a flag, which is a bool to clients and a byte to the library: whoever converts the record says that
/// any byte but zero is true.
#define FAPI_TWIN_FLAG(Record, flag, byte)                                       \
    static_assert(offsetof(Record, flag) == offsetof(fapi_core::Record, byte) && \
                          sizeof(fapi_core::Record::byte) == sizeof(bool),       \
                  "the twins differ in layout")

#define FAPI_TWIN_PIN(Record, field)                                                 \
    static_assert(offsetof(Record, field) == offsetof(fapi_core::Record, field) &&   \
                          sizeof(Record::field) == sizeof(fapi_core::Record::field), \
                  "the twins differ in layout");
#define FAPI_TWIN_SIZE(Record, field) +sizeof(Record::field)
#define FAPI_TWIN_COPY(Record, field) details::copyField(stFrom.field, stTo.field);

// do_ for each of up to 13 fields.
#define FAPI_TWIN_EACH(do_, R, ...) \
    FAPI_TWIN_CHOOSE(__VA_ARGS__, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, )(do_, R, __VA_ARGS__)
#define FAPI_TWIN_CHOOSE(_1, _2, _3, _4, _5, _6, _7, _8, _9, _10, _11, _12, _13, count, ...) FAPI_TWIN_##count
#define FAPI_TWIN_1(do_, R, field) do_(R, field)
#define FAPI_TWIN_2(do_, R, field, ...) do_(R, field) FAPI_TWIN_1(do_, R, __VA_ARGS__)
#define FAPI_TWIN_3(do_, R, field, ...) do_(R, field) FAPI_TWIN_2(do_, R, __VA_ARGS__)
#define FAPI_TWIN_4(do_, R, field, ...) do_(R, field) FAPI_TWIN_3(do_, R, __VA_ARGS__)
#define FAPI_TWIN_5(do_, R, field, ...) do_(R, field) FAPI_TWIN_4(do_, R, __VA_ARGS__)
#define FAPI_TWIN_6(do_, R, field, ...) do_(R, field) FAPI_TWIN_5(do_, R, __VA_ARGS__)
#define FAPI_TWIN_7(do_, R, field, ...) do_(R, field) FAPI_TWIN_6(do_, R, __VA_ARGS__)
#define FAPI_TWIN_8(do_, R, field, ...) do_(R, field) FAPI_TWIN_7(do_, R, __VA_ARGS__)
#define FAPI_TWIN_9(do_, R, field, ...) do_(R, field) FAPI_TWIN_8(do_, R, __VA_ARGS__)
#define FAPI_TWIN_10(do_, R, field, ...) do_(R, field) FAPI_TWIN_9(do_, R, __VA_ARGS__)
#define FAPI_TWIN_11(do_, R, field, ...) do_(R, field) FAPI_TWIN_10(do_, R, __VA_ARGS__)
#define FAPI_TWIN_12(do_, R, field, ...) do_(R, field) FAPI_TWIN_11(do_, R, __VA_ARGS__)
#define FAPI_TWIN_13(do_, R, field, ...) do_(R, field) FAPI_TWIN_12(do_, R, __VA_ARGS__)

/// Fills the library's form of a record from the clients'.
template <typename HidlRecord>
void copyTwin(const HidlRecord& stHidl, typename ChipTwin<HidlRecord>::type& stChip) {
    ChipTwin<HidlRecord>::copy(stHidl, stChip);
}

/// Fills the clients' form of a record from the library's.
template <typename HidlRecord>
void copyTwin(const typename ChipTwin<HidlRecord>::type& stChip, HidlRecord& stHidl) {
    ChipTwin<HidlRecord>::copy(stChip, stHidl);
}

namespace details {

template <typename From, typename To>
void copyField(const From& from, To& to) {
    static_assert(sizeof(From) == sizeof(To), "the twins differ in width");
    if constexpr (hasTwin<From>) {
        copyTwin(from, to);
    } else {
        static_assert(std::has_unique_object_representations_v<From> &&
                              std::has_unique_object_representations_v<To>,
                      "the field has padding, or is more than plain bytes");
        std::memcpy(static_cast<void*>(&to), &from, sizeof(to));
    }
}

}  // namespace details

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
