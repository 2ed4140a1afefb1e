#include "tests/fake/FakeChipLayer.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <type_traits>

#include "chiplayer/chiplayer.h"

namespace {

FakeChipLayer* sCurrent = nullptr;

template <typename T>
void describe(std::ostream& out, const T& argument) {
    if constexpr (std::is_same_v<T, const char*> || std::is_same_v<T, const unsigned char*>) {
        out << '"' << argument << '"';
    } else if constexpr (std::is_enum_v<T>) {
        out << +static_cast<std::underlying_type_t<T>>(argument);
    } else if constexpr (std::is_arithmetic_v<T>) {
        out << +argument;
    } else {
        out << (std::is_pointer_v<T> ? "*" : "{}");
    }
}

}  // namespace

FakeChipLayer::FakeChipLayer() {
    sCurrent = this;
}

FakeChipLayer::~FakeChipLayer() {
    sCurrent = nullptr;
}

FakeChipLayer& FakeChipLayer::current() {
    if (sCurrent == nullptr) {
        std::fputs("a chip-layer function was called without a FakeChipLayer\n", stderr);
        std::abort();
    }
    return *sCurrent;
}

template <typename Function, typename... Arguments>
typename std::function<Function>::result_type FakeChipLayer::called(const char* name, Function* function,
                                                                    Arguments&&... arguments) {
    std::ostringstream call;
    [[maybe_unused]] const char* separator = "";
    call << name << '(';
    ((call << std::exchange(separator, ", "), describe(call, arguments)), ...);
    call << ')';
    mCalls.push_back(call.str());
    const auto action = mActions.find(keyOf(function));
    if (action == mActions.end()) {
        return {};
    }
    return std::any_cast<std::function<Function>&>(action->second)(std::forward<Arguments>(arguments)...);
}

// FAKE(result, name, parameter types...): one line makes a whole fake function.
#define FAKE(...) FAKE_FORM(__VA_ARGS__, 7, 6, 5, 4, 3, 2, 1, 0, )(__VA_ARGS__)
#define FAKE_FORM(_result, _name, _1, _2, _3, _4, _5, _6, _7, count, ...) FAKE_##count
#define CALLED(...) return FakeChipLayer::current().called(__func__, __VA_ARGS__)
// clang-format off
#define FAKE_0(R, name) R name() { CALLED(name); }
#define FAKE_1(R, name, A) R name(A a) { CALLED(name, a); }
#define FAKE_2(R, name, A, B) R name(A a, B b) { CALLED(name, a, b); }
#define FAKE_3(R, name, A, B, C) R name(A a, B b, C c) { CALLED(name, a, b, c); }
#define FAKE_4(R, name, A, B, C, D) R name(A a, B b, C c, D d) { CALLED(name, a, b, c, d); }
#define FAKE_5(R, name, A, B, C, D, E) R name(A a, B b, C c, D d, E e) { CALLED(name, a, b, c, d, e); }
#define FAKE_6(R, name, A, B, C, D, E, F) \
    R name(A a, B b, C c, D d, E e, F f) { CALLED(name, a, b, c, d, e, f); }
#define FAKE_7(R, name, A, B, C, D, E, F, G) \
    R name(A a, B b, C c, D d, E e, F f, G g) { CALLED(name, a, b, c, d, e, f, g); }
// clang-format on

#define FAKE_MODULE(m)                                                              \
    FAKE(int32_t, a_zvttvfapi_##m##_init)                                           \
    FAKE(int32_t, a_zvttvfapi_##m##_deinit)                                         \
    FAKE(int32_t, a_zvttvfapi_##m##_reg_callback, fapi_core::ZvtTvFApiEventHandler) \
    FAKE(int32_t, a_zvttvfapi_##m##_unreg_callback)

FAKE_MODULE(aud)
FAKE_MODULE(disp)
FAKE_MODULE(disptst)
FAKE_MODULE(info)
FAKE_MODULE(inpsrc)
FAKE_MODULE(net)
FAKE_MODULE(prphrl)
FAKE_MODULE(sys)

FAKE(int, _a_zvttvfapi_custom_init)
FAKE(int, _a_zvttvfapi_custom_init_debug_level)

FAKE(int32_t, a_zvttvfapi_common_get_fapi_status)
FAKE(int32_t, a_zvttvfapi_common_get_fapi_version, char*, unsigned int)

FAKE(int32_t, a_zvttvfapi_info_get_ini_para, const unsigned char*, const unsigned char*, unsigned char*,
     unsigned int)
FAKE(int32_t, a_zvttvfapi_info_set_ini_para, const unsigned char*, const unsigned char*, const unsigned char*)
FAKE(int32_t, a_zvttvfapi_info_get_ip_enable_status, unsigned int, unsigned char*)
