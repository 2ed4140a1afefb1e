#pragma once

#include <hidl/Status.h>

#include <array>
#include <cstring>
#include <functional>
#include <limits>
#include <optional>
#include <stdexcept>
#include <tuple>
#include <type_traits>
#include <utility>

#include "tools/fapictl/Model.h"

// From C++ types to the model: which Type a C++ type has, how a value goes to and from Json, and how a
// proxy's method is called with Json. Included by the generated tables only, which specialise Enumeration and
// Record.
namespace fapictl {

/** For an enumeration: `name` and `enumerators()`. */
template <class E>
struct Enumeration;

/** For a record: `name`, `members` (a tuple of pointers to members) and `labels()`, in the same order. */
template <class R>
struct Record;

template <class T, class = void>
struct Codec;

template <class T>
const Type& typeOf() {
    static const Type type = Codec<T>::type();
    return type;
}

template <>
struct Codec<bool> {
    static Type type() { return {Type::Kind::Boolean, "bool"}; }
    static Json toJson(const bool& value) {
        // The peer may have sent any byte; as a bool it would be undefined behaviour to look at it.
        unsigned char byte;
        std::memcpy(&byte, &value, 1);
        return byte != 0;
    }
    static void fromJson(const Json& json, bool& value) { value = json.get<bool>(); }
};

template <class T>
struct Codec<T, std::enable_if_t<std::is_integral_v<T>>> {
    static Type type() {
        Type type{Type::Kind::Integer,
                  (std::is_signed_v<T> ? "int" : "uint") + std::to_string(8 * sizeof(T)) + "_t"};
        type.minimum = static_cast<int64_t>(std::numeric_limits<T>::min());
        type.maximum = static_cast<uint64_t>(std::numeric_limits<T>::max());
        return type;
    }
    static Json toJson(const T& value) { return value; }
    static void fromJson(const Json& json, T& value) { value = json.get<T>(); }
};

template <class T>
struct Codec<T, std::enable_if_t<std::is_enum_v<T>>> {
    using Number = std::underlying_type_t<T>;
    static Type type() {
        Type type = Codec<Number>::type();
        type.kind = Type::Kind::Enumeration;
        type.name = Enumeration<T>::name;
        type.enumerators = Enumeration<T>::enumerators();
        return type;
    }
    static Json toJson(const T& value) { return static_cast<Number>(value); }
    static void fromJson(const Json& json, T& value) { value = static_cast<T>(json.get<Number>()); }
};

template <>
struct Codec<android::hardware::hidl_string> {
    static Type type() { return {Type::Kind::Text, "string"}; }
    static Json toJson(const android::hardware::hidl_string& value) {
        return std::string(value.c_str(), value.size());
    }
    static void fromJson(const Json& json, android::hardware::hidl_string& value) {
        value = json.get_ref<const std::string&>();
    }
};

template <class T>
struct Codec<sp<T>> {
    static Type type() {
        const std::string descriptor = T::descriptor;
        return {Type::Kind::Interface, descriptor.substr(descriptor.rfind(':') + 1)};
    }
    static Json toJson(const sp<T>& value) { return value == nullptr ? Json() : Json("object"); }
    // The command line has no objects, only the null one.
    static void fromJson(const Json&, sp<T>& value) { value = nullptr; }
};

/** A run of elements that lie one after the other, as lists have them. */
template <class T>
Json toList(const T* elements, size_t count) {
    if constexpr (std::is_same_v<T, uint8_t>) {
        return Json::binary(std::vector<uint8_t>(elements, elements + count));
    } else {
        Json list = Json::array();
        for (size_t i = 0; i < count; ++i) {
            list.push_back(Codec<T>::toJson(elements[i]));
        }
        return list;
    }
}

template <class T>
void fromList(const Json& json, T* elements, size_t count) {
    if constexpr (std::is_same_v<T, uint8_t>) {
        const auto& bytes = json.get_binary();
        std::copy_n(bytes.begin(), count, elements);
    } else {
        for (size_t i = 0; i < count; ++i) {
            Codec<T>::fromJson(json.at(i), elements[i]);
        }
    }
}

template <class T>
struct Codec<android::hardware::hidl_vec<T>> {
    static Type type() {
        Type type{Type::Kind::List, "vec<" + typeOf<T>().name + ">"};
        type.element = &typeOf<T>();
        return type;
    }
    static Json toJson(const android::hardware::hidl_vec<T>& value) {
        return toList(value.data(), value.size());
    }
    static void fromJson(const Json& json, android::hardware::hidl_vec<T>& value) {
        value.resize(json.is_binary() ? json.get_binary().size() : json.size());
        fromList(json, value.data(), value.size());
    }
};

/** One dimension of a fixed array, as a type of its own: arrays of arrays nest. */
template <class T, size_t First, size_t... Rest>
struct Dimension {
    static constexpr size_t kInner = (Rest * ... * 1);
    static const Type& element() {
        if constexpr (sizeof...(Rest) == 0) {
            return typeOf<T>();
        } else {
            static const Type type = Dimension<T, Rest...>::type();
            return type;
        }
    }
    static Type type() {
        // As it is declared: the outermost count stands first.
        const std::string inner = element().name;
        const size_t bracket = inner.find('[');
        std::string name = inner.substr(0, bracket) + "[" + std::to_string(First) + "]";
        if (bracket != std::string::npos) {
            name += inner.substr(bracket);
        }
        Type type{Type::Kind::List, name};
        type.element = &element();
        type.count = First;
        return type;
    }
    static Json toJson(const T* flat) {
        if constexpr (sizeof...(Rest) == 0) {
            return toList(flat, First);
        } else {
            Json list = Json::array();
            for (size_t i = 0; i < First; ++i) {
                list.push_back(Dimension<T, Rest...>::toJson(flat + i * kInner));
            }
            return list;
        }
    }
    static void fromJson(const Json& json, T* flat) {
        if constexpr (sizeof...(Rest) == 0) {
            fromList(json, flat, First);
        } else {
            for (size_t i = 0; i < First; ++i) {
                Dimension<T, Rest...>::fromJson(json.at(i), flat + i * kInner);
            }
        }
    }
};

template <class T, size_t... Counts>
struct Codec<android::hardware::hidl_array<T, Counts...>> {
    static Type type() { return Dimension<T, Counts...>::type(); }
    static Json toJson(const android::hardware::hidl_array<T, Counts...>& value) {
        return Dimension<T, Counts...>::toJson(value.data());
    }
    static void fromJson(const Json& json, android::hardware::hidl_array<T, Counts...>& value) {
        Dimension<T, Counts...>::fromJson(json, value.data());
    }
};

template <class T>
struct Codec<T, std::void_t<decltype(Record<T>::members)>> {
    template <class M>
    static M memberType(M T::*);

    static Type type() {
        Type type{Type::Kind::Record, Record<T>::name};
        const std::vector<Label> labels = Record<T>::labels();
        std::apply(
                [&](auto... member) {
                    size_t i = 0;
                    (type.fields.push_back({labels.at(i++), &typeOf<decltype(memberType(member))>()}), ...);
                },
                Record<T>::members);
        return type;
    }
    static Json toJson(const T& value) {
        Json json = Json::object();
        const std::vector<Field>& fields = typeOf<T>().fields;
        std::apply(
                [&](auto... member) {
                    size_t i = 0;
                    ((json[fields[i++].label.name] =
                              Codec<decltype(memberType(member))>::toJson(value.*member)),
                     ...);
                },
                Record<T>::members);
        return json;
    }
    static void fromJson(const Json& json, T& value) {
        const std::vector<Field>& fields = typeOf<T>().fields;
        std::apply(
                [&](auto... member) {
                    size_t i = 0;
                    (Codec<decltype(memberType(member))>::fromJson(json.at(fields[i++].label.name),
                                                                   value.*member),
                     ...);
                },
                Record<T>::members);
    }
};

/** Takes a generated method's type apart; the result callback is its last parameter when it has one. */
template <class M>
struct Signature;

template <class I, class R, class... P>
struct Signature<android::hardware::Return<R> (I::*)(P...)> {
    template <class T>
    struct Callback : std::false_type {};
    template <class... A>
    struct Callback<std::function<void(A...)>> : std::true_type {
        using Results = std::tuple<std::decay_t<A>...>;
    };

    static auto split() {
        using Parameters = std::tuple<std::decay_t<P>...>;
        if constexpr (sizeof...(P) > 0) {
            using Last = std::tuple_element_t<sizeof...(P) - 1, Parameters>;
            if constexpr (Callback<Last>::value) {
                return std::pair(first<Parameters>(std::make_index_sequence<sizeof...(P) - 1>()),
                                 typename Callback<Last>::Results());
            } else {
                return std::pair(Parameters(), single());
            }
        } else {
            return std::pair(Parameters(), single());
        }
    }
    template <class Tuple, size_t... N>
    static std::tuple<std::tuple_element_t<N, Tuple>...> first(std::index_sequence<N...>) {
        return {};
    }
    static auto single() {
        if constexpr (std::is_void_v<R>) {
            return std::tuple<>();
        } else {
            return std::tuple<R>();
        }
    }

    using Interface = I;
    using Arguments = typename decltype(split())::first_type;
    using Results = typename decltype(split())::second_type;
    static constexpr bool kHasCallback = std::tuple_size_v<Arguments> != sizeof...(P);
    static constexpr bool kHasValue = !std::is_void_v<R>;
};

template <auto M>
void callMethod(IBase& service, const Json& json, Reply& reply) {
    using S = Signature<decltype(M)>;
    auto& target = static_cast<typename S::Interface&>(service);
    // Records are filled in place, never assigned: what lies between their fields stays zero, as it is made
    // here.
    typename S::Arguments arguments{};
    std::apply(
            [&](auto&... argument) {
                size_t i = 0;
                (Codec<std::decay_t<decltype(argument)>>::fromJson(json.at(i++), argument), ...);
            },
            arguments);

    // Results are gone when the callback returns: this copies them.
    const auto take = [&reply](const auto&... result) {
        (reply.results.push_back(Codec<std::decay_t<decltype(result)>>::toJson(result)), ...);
    };
    auto status = std::apply(
            [&](const auto&... argument) {
                if constexpr (S::kHasCallback) {
                    return (target.*M)(argument..., take);
                } else {
                    return (target.*M)(argument...);
                }
            },
            arguments);
    if (!status.isOk()) {
        reply.failure = status.description();
        reply.dead = status.isDeadObject();
        return;
    }
    if constexpr (S::kHasValue) {
        take(static_cast<std::tuple_element_t<0, typename S::Results>>(status));
    }
    if (reply.results.size() != std::tuple_size_v<typename S::Results>) {
        reply.failure = "the service answered without results";
    }
}

template <class... T>
std::vector<Field> fieldsOf(const std::tuple<T...>*, std::vector<Label> labels) {
    if (labels.size() != sizeof...(T)) {
        throw std::logic_error("the table does not match the generated interface");
    }
    std::vector<Field> fields;
    (fields.push_back({labels[fields.size()], &typeOf<T>()}), ...);
    return fields;
}

template <auto M>
Method methodOf(std::string name, std::string doc, bool oneway, std::vector<Label> arguments,
                std::vector<Label> results, std::optional<size_t> outcome) {
    using S = Signature<decltype(M)>;
    return {std::move(name),
            std::move(doc),
            oneway,
            fieldsOf(static_cast<typename S::Arguments*>(nullptr), std::move(arguments)),
            fieldsOf(static_cast<typename S::Results*>(nullptr), std::move(results)),
            outcome,
            &callMethod<M>};
}

template <class I>
Interface interfaceOf(std::string name, std::string doc, bool isService, std::vector<Method> methods) {
    return {std::move(name),
            I::descriptor,
            std::move(doc),
            isService,
            std::move(methods),
            [](const std::string& instance) { return sp<IBase>(I::tryGetService(instance)); },
            [](const std::string& instance, const sp<IServiceNotification>& listener) {
                return I::registerForNotifications(instance, listener);
            }};
}

}  // namespace fapictl
