// bench-frame: a method of an interface object, called directly, beside the chip-layer call under it.

#include <benchmark/benchmark.h>
#include <service/trace/TracedInterfaces.h>

#include <string>
#include <vector>

#include "adapters/information/ZvtTvFApiInformation.h"
#include "bench/common/CommandLine.h"
#include "bench/common/Process.h"
#include "bench/common/Rounds.h"
#include "bench/common/Table.h"
#include "chiplayer/info.h"
#include "service/frame/Debug.h"

namespace {

using namespace bench;
using ::android::sp;
using ::android::hardware::hidl_string;
using namespace ::vendor::zentrovi::tv::zvttvfactory::V1_0::implementation;

const unsigned char* bytes(const hidl_string& text) {
    return reinterpret_cast<const unsigned char*>(text.c_str());
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    parseOptions(argc, argv, "Measures what a method of the service adds to the chip-layer call under it.",
                 &options);

    u8TvFactoryDebug = 0;
    const sp<ZvtTvFApiInformation> object = new Traced<ZvtTvFApiInformation>;
    const hidl_string section("picture"), key("brightness"), value("50");

    const Limit limit{Limit::Kind::MoreAtMost, 20};
    const OneCpu binding;
    Table table{"A method called directly, beside its chip-layer call; u8TvFactoryDebug 0; " +
                        conditions(true, options),
                {}};
    const auto add = [&](const std::string& name, auto chip, auto method) {
        if (!options.wants(name)) {
            return;
        }
        table.rows.push_back(compare(name, Unit::Nanoseconds, limit, options.rounds,
                                     timeOf(options.seconds, chip), timeOf(options.seconds, method)));
    };

    add(
            "a number in, a bool out",
            [] {
                uint8_t u8Enable = 0;
                benchmark::DoNotOptimize(a_zvttvfapi_info_get_ip_enable_status(1, &u8Enable));
                benchmark::DoNotOptimize(u8Enable);
            },
            [&] {
                object->a_hidl_zvttvfapi_info_get_ip_enable_status(1, [](bool bEnable, int32_t s32Ret) {
                    benchmark::DoNotOptimize(bEnable);
                    benchmark::DoNotOptimize(s32Ret);
                });
            });
    add(
            "three texts in",
            [&] {
                benchmark::DoNotOptimize(
                        a_zvttvfapi_info_set_ini_para(bytes(section), bytes(key), bytes(value)));
            },
            [&] {
                const int32_t s32Ret = object->a_hidl_zvttvfapi_info_set_ini_para(section, key, value);
                benchmark::DoNotOptimize(s32Ret);
            });
    add(
            "two texts in, a text out",
            [&] {
                // Whoever calls the function brings a zeroed buffer: it is a part of the call.
                unsigned char acValue[2048] = {};
                benchmark::DoNotOptimize(
                        a_zvttvfapi_info_get_ini_para(bytes(section), bytes(key), acValue, sizeof(acValue)));
                benchmark::DoNotOptimize(acValue);
            },
            [&] {
                object->a_hidl_zvttvfapi_info_get_ini_para(section, key,
                                                           [](const hidl_string& strValue, int32_t s32Ret) {
                                                               benchmark::DoNotOptimize(strValue.c_str());
                                                               benchmark::DoNotOptimize(s32Ret);
                                                           });
            });
    return report({table}, options);
}
