#pragma once

#include <hidl/HidlSupport.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiInformation.h>

#include <cstdint>

// Calls that several programs of the benchmark make.

namespace bench {

using ::vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiInformation;

/** Threads that serve calls where nothing else is said: as many as the service has. */
constexpr char kServiceThreads[] = "10";

/** One 32-bit argument; an 8-bit and a 32-bit result. */
inline void tinyCall(IZvtTvFApiInformation& information) {
    uint32_t answers = 0;
    information.a_hidl_zvttvfapi_info_get_ip_enable_status(1, [&](bool, int32_t) { ++answers; }).assertOk();
}

/** Two short texts; a text of 100 bytes. */
inline void textCall(IZvtTvFApiInformation& information) {
    static const android::hardware::hidl_string kSection("picture");
    static const android::hardware::hidl_string kKey("brightness");
    uint32_t answers = 0;
    information.a_hidl_zvttvfapi_info_get_ini_para(kSection, kKey, [&](const auto&, int32_t) { ++answers; })
            .assertOk();
}

}  // namespace bench
