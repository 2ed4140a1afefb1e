#pragma once

#include <hidl/HidlSupport.h>

#include <android/hidl/base/1.0/IBase.h>
#include <android/hidl/manager/1.0/IServiceNotification.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

// What the tool knows about a package of interfaces. The tables are generated from the package; nothing here
// or in the verbs knows a method by name.
namespace fapictl {

/**
 * A value between the command line and a call. Integers and enumerations are numbers, texts are strings that
 * may hold any bytes, lists of uint8_t are JSON's binary kind, records are objects whose members are in
 * declaration order.
 */
using Json = nlohmann::ordered_json;

using android::sp;
using android::hidl::base::V1_0::IBase;
using android::hidl::manager::V1_0::IServiceNotification;

struct Type;

/** A named thing with its doc comment: an argument, a result, a record's field. */
struct Label {
    std::string name;
    std::string unit;  // "ms", "Hz"; empty when the interface does not say
    std::string doc;
};

struct Field {
    Label label;
    const Type* type;
};

struct Enumerator {
    std::string name;
    Json value;
    std::string doc;
};

struct Type {
    enum class Kind { Boolean, Integer, Text, Enumeration, Record, List, Interface };

    Kind kind;
    std::string name;  // as in the interface's declaration: "uint8_t", "vec<uint16_t>", "uint8_t[4]"
    int64_t minimum = 0;
    uint64_t maximum = 0;
    std::vector<Enumerator> enumerators = {};
    std::vector<Field> fields = {};
    const Type* element = nullptr;
    std::optional<size_t> count = {};  // of a fixed array

    bool isBytes() const {
        return kind == Kind::List && element->kind == Kind::Integer && element->maximum == UINT8_MAX;
    }
};

/** How a call ended below the service's own status. */
struct Reply {
    std::string failure;  // the transport's words; empty when the call came back
    bool dead = false;    // the service's process ended before or during the call
    Json results = Json::array();
};

struct Method {
    std::string name;
    std::string doc;
    bool oneway;
    std::vector<Field> arguments;
    std::vector<Field> results;
    std::optional<size_t> outcomeResult;

    /**
     * Requires an object of the method's interface, one valid value for each argument, in order, and a reply
     * of which nothing is set. It has the results from the moment at which the service delivers them.
     */
    void (*callInto)(IBase& service, const Json& arguments, Reply& reply);

    /** The result that tells how the method fared: its status, or a bool whose false is a failure. */
    std::optional<size_t> outcome() const { return outcomeResult; }

    Reply call(IBase& service, const Json& values) const {
        Reply reply;
        callInto(service, values, reply);
        return reply;
    }
};

struct Interface {
    std::string name;        // "IThing"
    std::string descriptor;  // "vendor.example@1.0::IThing"
    std::string doc;
    bool isService;  // false for a callback interface, which clients implement
    std::vector<Method> methods;

    /** Null when no such instance is registered; never waits. */
    sp<IBase> (*find)(const std::string& instance);
    /** Tells the listener of the instance if it is registered, and whenever it is registered later. */
    bool (*notify)(const std::string& instance, const sp<IServiceNotification>& listener);
};

struct Package {
    std::string name;  // "vendor.example@1.0"
    std::vector<Interface> interfaces;
};

}  // namespace fapictl
