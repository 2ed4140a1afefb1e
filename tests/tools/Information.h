#pragma once

#include <unistd.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/IZvtTvFApiInformation.h>

#include <atomic>
#include <string>

namespace fapictl {

/** Of a library with names for some statuses, that of the value that is to be set. */
class Information : public vendor::zentrovi::tv::zvttvfactory::V1_0::IZvtTvFApiInformation {
    using Text = android::hardware::hidl_string;
    using Void = android::hardware::Return<void>;

  public:
    Void a_hidl_zvttvfapi_info_get_ini_para(const Text& file, const Text& parameter,
                                            a_hidl_zvttvfapi_info_get_ini_para_cb cb) override {
        const std::string asked = std::string(file) + ' ' + std::string(parameter);
        if (asked == "board status:7") {
            cb("named\t" + std::to_string(++mAsked), 0);
        } else if (asked == "board status:8") {
            cb(std::string(65, '8'), 0);
        } else if (asked == "board status:9") {
            cb("ninth", mReady.exchange(true) ? 0 : -5);
        } else if (asked == "board status:10") {
            pause();
        } else if (asked == "board refusal:info_set_ini_para a b=\" 7") {
            cb("not\ntoday", 0);
        } else {
            cb("", -1);
        }
        return {};
    }
    android::hardware::Return<int32_t> a_hidl_zvttvfapi_info_set_ini_para(const Text&, const Text&,
                                                                          const Text& value) override {
        return std::stoi(value);
    }
    Void a_hidl_zvttvfapi_info_get_ip_enable_status(
            uint32_t, a_hidl_zvttvfapi_info_get_ip_enable_status_cb cb) override {
        cb(false, 0);
        return {};
    }
    Void a_hidl_zvttvfapi_info_get_fapi_sw_version(a_hidl_zvttvfapi_info_get_fapi_sw_version_cb cb) override {
        cb("", 0);
        return {};
    }

  private:
    std::atomic<int> mAsked{0};
    std::atomic<bool> mReady{false};
};

}  // namespace fapictl
