#pragma once

#include <hidl/HidlSupport.h>

#include <cstdint>
#include <type_traits>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

using ::android::hardware::hidl_string;

/// Says which chip-layer enumeration a HIDL enumeration becomes, and up to which value: an adapter
/// specialises it, beside the static_asserts that pin the two enumerations' values. For a record FAPI_TWIN()
/// does, or whoever converts its texts.
///
///     template <>
///     struct ChipTwin<ZvtTvFApiPwmAttr> {
///         using type = fapi_core::ZvtTvFApiPwmAttr;
///         static constexpr type last = static_cast<type>(3);  // what every value beyond 2 becomes
///     };
template <typename Hidl>
struct ChipTwin;

/// The chip-layer twin of a value: the same value below ChipTwin::last, and last for everything else. The
/// comparison is unsigned, so that a negative value becomes last too.
template <typename HidlEnum, std::enable_if_t<std::is_enum_v<HidlEnum>, int> = 0>
constexpr typename ChipTwin<HidlEnum>::type toTwin(HidlEnum value) {
    using Twin = typename ChipTwin<HidlEnum>::type;
    using Bits = std::make_unsigned_t<std::underlying_type_t<HidlEnum>>;
    static_assert(sizeof(Twin) == sizeof(HidlEnum), "the twins differ in width");
    const bool known = static_cast<Bits>(value) < static_cast<Bits>(ChipTwin<HidlEnum>::last);
    return known ? static_cast<Twin>(value) : ChipTwin<HidlEnum>::last;
}

/// The chip-layer form of a record. One that has padding is filled where it is declared, with copyTwin().
template <typename HidlRecord, std::enable_if_t<std::is_class_v<HidlRecord>, int> = 0>
typename ChipTwin<HidlRecord>::type toTwin(const HidlRecord& stHidl) {
    using Twin = typename ChipTwin<HidlRecord>::type;
    static_assert(std::has_unique_object_representations_v<Twin> || !std::is_trivially_copyable_v<Twin>,
                  "what a copy makes of padding is the compiler's choice");
    Twin stChip;
    ChipTwin<HidlRecord>::copy(stHidl, stChip);
    return stChip;
}

/// An argument cell: a copy of one argument, in the chip layer's width and unsigned (a bool as 8-bit 0 or 1),
/// handed over by its address. It lives until the end of the full expression that makes it.
///
///     callChip(a_zvttvfapi_aud_adv_set_prescale, cell(bEnable), cell(s16Value));
template <typename T>
class Cell {
  public:
    explicit Cell(T value) : mValue(value) {}
    explicit operator T*() { return &mValue; }

  private:
    T mValue;
};

namespace details {
template <typename T>
struct CellType : std::make_unsigned<T> {};
template <>
struct CellType<bool> {
    using type = uint8_t;
};
}  // namespace details

template <typename T>
auto cell(T value) {
    using Width = typename details::CellType<T>::type;
    return Cell<Width>(static_cast<Width>(value));
}

/// A client's text for a chip-layer function that declares the text it only reads as a pointer to something
/// else than constant characters. The function receives the address of the text's own characters, not a copy,
/// and must not write through it.
///
///     forward(a_zvttvfapi_net_set_mac, lend(strMac));  // takes unsigned int*
class LentText {
  public:
    explicit LentText(const hidl_string& text) : mCharacters(text.c_str()) {}
    explicit operator unsigned char*() const { return reinterpret_cast<unsigned char*>(characters()); }
    explicit operator unsigned int*() const { return reinterpret_cast<unsigned int*>(characters()); }

  private:
    char* characters() const { return const_cast<char*>(mCharacters); }

    const char* mCharacters;
};

inline LentText lend(const hidl_string& text) {
    return LentText(text);
}

/// The low eight bits of a chip-layer result, for the functions whose result is an 8-bit value in a wider
/// type.
template <typename T>
constexpr uint8_t lowByte(T result) {
    return static_cast<uint8_t>(result);
}

namespace details {

template <typename T>
using Plain = std::remove_cv_t<std::remove_reference_t<T>>;

template <typename T>
inline constexpr bool isNumber = std::is_integral_v<T> && !std::is_same_v<T, bool>;

template <typename T, typename = void>
inline constexpr bool hasTwin = false;
template <typename T>
inline constexpr bool hasTwin<T, std::void_t<typename ChipTwin<T>::type>> = true;

template <typename Parameter, typename Argument>
constexpr bool isConvertible() {
    using From = Plain<Argument>;
    if constexpr (std::is_same_v<From, hidl_string>) {
        return std::is_same_v<Parameter, const char*> || std::is_same_v<Parameter, const unsigned char*>;
    } else if constexpr (std::is_same_v<From, Plain<Parameter>>) {
        return std::is_constructible_v<Parameter, Argument>;
    } else if constexpr (std::is_same_v<From, bool>) {
        return std::is_same_v<Parameter, unsigned char>;
    } else if constexpr (isNumber<From>) {
        return isNumber<Parameter> && sizeof(From) == sizeof(Parameter);
    } else if constexpr (hasTwin<From>) {
        return std::is_same_v<Parameter, typename ChipTwin<From>::type>;
    } else if constexpr (std::is_class_v<From>) {
        return std::is_pointer_v<Parameter> && std::is_constructible_v<Parameter, Argument>;
    } else {
        return std::is_pointer_v<Parameter> && std::is_convertible_v<Argument, Parameter>;
    }
}

}  // namespace details

/// Whether toChip<Parameter>() takes an argument of this type.
template <typename Parameter, typename Argument>
inline constexpr bool isChipArgument = details::isConvertible<Parameter, Argument>();

/// Converts one argument to the type that the chip-layer function declares for it:
///
/// - hidl_string to const char* or const unsigned char*: the text's own NUL-terminated bytes, valid as
///   long as the text;
/// - bool to unsigned char 0 or 1, or to bool;
/// - an integer to an integer of the same width: the sign may change, the bits do not;
/// - a HIDL enumeration or record with a ChipTwin to its twin, see toTwin();
/// - Cell, LentText, TextBuffer or Scratch to the pointer that the object stands for;
/// - a pointer, reference or record of the parameter's own type to itself.
///
/// Everything else does not compile: a narrowing (of a count, say) or widening is written at the call.
template <typename Parameter, typename Argument>
constexpr Parameter toChip(Argument&& argument) {
    static_assert(isChipArgument<Parameter, Argument>, "the chip-layer function takes another type here");
    using From = details::Plain<Argument>;
    if constexpr (std::is_same_v<From, hidl_string>) {
        // By way of const void*: the parameter may ask for unsigned characters.
        return static_cast<Parameter>(static_cast<const void*>(argument.c_str()));
    } else if constexpr (details::hasTwin<From>) {
        return toTwin(argument);
    } else {
        return static_cast<Parameter>(argument);
    }
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
