#pragma once

#include <test/fapictl/1.0/IZvtTvFApiThing.h>
#include <unistd.h>

#include <condition_variable>
#include <mutex>

namespace test::fapictl::V1_0 {

using android::sp;
using android::hardware::hidl_array;
using android::hardware::hidl_string;
using android::hardware::hidl_vec;
using android::hardware::Return;
using android::hardware::Void;

/** Gives back what it gets. */
struct Thing : IZvtTvFApiThing {
    Return<void> a_hidl_a_zvttvfapi_thg_scalars(int8_t s8, uint8_t u8, int16_t s16, uint16_t u16, int32_t s32,
                                                uint32_t u32, int64_t s64, uint64_t u64, bool b,
                                                Colour colour, Depth depth,
                                                a_hidl_a_zvttvfapi_thg_scalars_cb cb) override {
        cb(s8, u8, s16, u16, s32, u32, s64, u64, b, colour, depth);
        return Void();
    }
    Return<void> a_hidl_zvttvfapi_thg_text(const hidl_string& text, int32_t report,
                                           a_hidl_zvttvfapi_thg_text_cb cb) override {
        cb(text, report);
        return Void();
    }
    Return<void> a_hidl_a_zvttvfapi_thg_lists(const hidl_vec<uint8_t>& bytes, const hidl_vec<uint16_t>& curve,
                                              const hidl_vec<Point>& path, const hidl_vec<Colour>& colours,
                                              const hidl_array<uint8_t, 2>& pair,
                                              a_hidl_a_zvttvfapi_thg_lists_cb cb) override {
        cb(bytes, curve, path, colours, pair);
        return Void();
    }
    Return<void> a_hidl_a_zvttvfapi_thg_everything(const Everything& all,
                                                   a_hidl_a_zvttvfapi_thg_everything_cb cb) override {
        cb(all, 0);
        return Void();
    }
    Return<int32_t> a_hidl_a_zvttvfapi_thg_set_watcher(const sp<IWatcher>& watcher) override {
        return watcher == nullptr ? -2 : 0;
    }
    /** A page longer than a pipe holds, and the options. */
    Return<void> debug(const android::hardware::hidl_handle& fd,
                       const hidl_vec<hidl_string>& options) override {
        dprintf(fd->data[0], "%s\n", std::string(100'000, '.').c_str());
        for (const hidl_string& option : options) {
            dprintf(fd->data[0], "%s\n", option.c_str());
        }
        return Void();
    }
    Return<uint8_t> a_hidl_a_zvttvfapi_thg_get_level() override { return 77; }
    Return<int32_t> a_hidl_a_zvttvfapi_thg_twin() override { return 0; }
    Return<int32_t> a_hidl_zvttvfapi_thg_twin() override { return 7; }
    Return<bool> a_hidl_a_zvttvfapi_thg_meet(uint32_t calls) override {
        std::unique_lock<std::mutex> lock(mMutex);
        ++mCalls;
        mCalled.notify_all();
        mCalled.wait(lock, [&] { return mCalls >= calls; });
        return calls > 0;
    }
    Return<void> a_hidl_a_zvttvfapi_thg_die() override { _exit(0); }
    Return<void> a_hidl_a_zvttvfapi_thg_hint(uint32_t) override { return Void(); }

  private:
    std::mutex mMutex;
    std::condition_variable mCalled;
    uint32_t mCalls = 0;  // guarded by mMutex
};

}  // namespace test::fapictl::V1_0
