#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "chiplayer/inpsrc.h"
#include "tests/simulator/SysFixture.h"

using namespace fapi_core;
using namespace simulator;
using testing::ElementsAre;

namespace {

std::mutex sMutex;
std::condition_variable sRaised;
std::vector<std::string> sEvents;  // guarded by sMutex

int onEvent(unsigned int type, const ZvtTvFApiEventCommonObject& first,
            const ZvtTvFApiEventCommonObject& second, const ZvtTvFApiEventCommonObject&,
            const ZvtTvFApiEventCommonObject&) {
    // A handler may call the library.
    ZvtTvFApiVideoTiming timing{};
    a_zvttvfapi_inpsrc_get_input_timing(timing);
    const std::lock_guard<std::mutex> lock(sMutex);
    sEvents.push_back((type == INPSRC_EVENT_TIMING ? "timing " : "lock ") + std::to_string(first.u32Value) +
                      " " + std::to_string(second.u32Value) + " " + second.strValue + " seen " +
                      std::to_string(timing.u16VActive));
    sRaised.notify_all();
    return 0;
}

class Inputs : public SysFixture {
  protected:
    void SetUp() override {
        SysFixture::SetUp();
        ASSERT_EQ(a_zvttvfapi_inpsrc_reg_callback(onEvent), kOk);
        ASSERT_EQ(a_zvttvfapi_inpsrc_init(), kOk);
        events(0);
    }
    void TearDown() override {
        a_zvttvfapi_inpsrc_deinit();
        a_zvttvfapi_inpsrc_unreg_callback();
    }

    static void restart() {
        ASSERT_EQ(a_zvttvfapi_inpsrc_deinit(), kOk);
        ASSERT_EQ(a_zvttvfapi_inpsrc_init(), kOk);
    }

    static int32_t order(const std::string& text) { return command(0, text); }

    /** That many events, taken as soon as they are there. */
    static std::vector<std::string> events(size_t count) {
        std::unique_lock<std::mutex> lock(sMutex);
        sRaised.wait_for(lock, std::chrono::seconds(5), [&] { return sEvents.size() >= count; });
        return std::move(sEvents);
    }

    static std::vector<uint32_t> gainOffset(unsigned source) {
        ZvtTvFApiAdcGainOffset_t found{};
        EXPECT_EQ(a_zvttvfapi_inpsrc_get_adc_gain_offset(source, &found), kOk);
        return {found.u32RedGain,   found.u32GreenGain,   found.u32BlueGain,
                found.u32RedOffset, found.u32GreenOffset, found.u32BlueOffset};
    }
};

}  // namespace

TEST_F(Inputs, RaiseAnEventForEachChangeOfTheCurrentSignalAndForNoOther) {
    ASSERT_EQ(order("signal hdmi1 lost"), kOk);
    EXPECT_THAT(events(1), ElementsAre("lock 6 0  seen 0"));
    // The search for a signal that has gone again, and those of other sources, end in nothing.
    ASSERT_EQ(order("signal HDMI1 lock 1280x720@50"), kOk);
    ASSERT_EQ(order("signal hdmi1 lost"), kOk);
    ASSERT_EQ(order("signal hdmi2 lock 1920x1080@60"), kOk);
    ASSERT_EQ(order("signal hdmi1 lock 1920x1080@60"), kOk);
    EXPECT_THAT(events(1), ElementsAre("lock 6 1  seen 1080"));
    ASSERT_EQ(order("signal hdmi1 lock 1280x720@59.94"), kOk);
    EXPECT_THAT(events(1), ElementsAre("timing 6 59940 1280x720p 59.940 Hz seen 720"));
    ASSERT_EQ(order("source av"), kOk);
    EXPECT_THAT(events(2), ElementsAre("lock 3 0  seen 0", "lock 3 1  seen 480"));
    ASSERT_EQ(order("source media"), kOk);
    ASSERT_EQ(order("source atv"), kOk);
    EXPECT_THAT(events(3), ElementsAre("lock 9 0  seen 0", "lock 1 0  seen 0", "lock 1 1  seen 576"));
    ASSERT_EQ(a_zvttvfapi_inpsrc_vif_init(), kOk);
    EXPECT_THAT(events(2), ElementsAre("lock 1 0  seen 0", "lock 1 1  seen 576"));
    // The same signal once more changes nothing; longer than a lock takes.
    ASSERT_EQ(order("signal atv lock 720x576i@50 pal"), kOk);
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_THAT(events(0), ElementsAre());
}

TEST_F(Inputs, AnswerForTheCurrentSourceAndFindItAgainAfterARestart) {
    const struct {
        const char* signal;
        const char* source;
        unsigned number, type, standard, decoderLocked;
        int32_t berStatus;
        ZvtTvFApiVideoTiming timing;
    } rows[] = {{"signal av lock 720x576i@50 secam",
                 "source av",
                 3,
                 2,
                 3,
                 1,
                 kAbsent,
                 {720, 864, 576, 625, 50000, 1}},
                {"signal atv lost", "source atv", 1, 1, 0, 0, kAbsent, {}},
                {"signal dtv lock 1920x1080i@50 ber=77",
                 "source dtv",
                 2,
                 1,
                 0,
                 0,
                 kOk,
                 {1920, 2640, 1080, 1125, 50000, 1}},
                {"signal vga lock 1000x500p@72.5",
                 "source vga",
                 5,
                 4,
                 0,
                 0,
                 kAbsent,
                 {1000, 1250, 500, 525, 72500, 0}},
                {"signal hdmi3 lost", "source none", 0, 0, 0, 0, kAbsent, {}}};
    for (const auto& row : rows) {
        ASSERT_EQ(order(row.signal), kOk);
        ASSERT_EQ(order(row.source), kOk);
        restart();
        unsigned char source = 99, type = 99, standard = 99, locked = 99;
        int32_t ber = 0;
        ZvtTvFApiVideoTiming timing{1, 1, 1, 1, 1, 1};
        EXPECT_EQ(a_zvttvfapi_inpsrc_get_current_input_source(&source), kOk);
        EXPECT_EQ(a_zvttvfapi_inpsrc_get_current_input_source_type(&type), kOk);
        EXPECT_EQ(a_zvttvfapi_inpsrc_get_video_standard(&standard), kOk);
        EXPECT_EQ(a_zvttvfapi_inpsrc_check_vd_signal_locked(&locked), kOk);
        EXPECT_EQ(a_zvttvfapi_inpsrc_get_input_timing(timing), kOk);
        EXPECT_EQ(a_zvttvfapi_inpsrc_get_ber(&ber), row.berStatus) << row.source;
        EXPECT_EQ(ber, row.berStatus == kOk ? 77 : 0);
        EXPECT_THAT((std::vector<unsigned>{source, type, standard, locked}),
                    ElementsAre(row.number, row.type, row.standard, row.decoderLocked))
                << row.source;
        EXPECT_THAT((std::vector<unsigned>{timing.u16HActive, timing.u16HTotal, timing.u16VActive,
                                           timing.u16VTotal, timing.u32FrameRate, timing.u8Interlaced}),
                    ElementsAre(row.timing.u16HActive, row.timing.u16HTotal, row.timing.u16VActive,
                                row.timing.u16VTotal, row.timing.u32FrameRate, row.timing.u8Interlaced))
                << row.source;
    }
}

TEST_F(Inputs, DoNotObeyOrdersThatMeanNothing) {
    for (const char* bad : {"signal",
                            "signal hdmi4 lost",
                            "signal hdmi1",
                            "signal hdmi1 found",
                            "signal hdmi1 lost now",
                            "signal hdmi1 lock",
                            "signal hdmi1 lock 1920x1080",
                            "signal hdmi1 lock 1920@60x1080",
                            "signal hdmi1 lock 0x1080@60",
                            "signal hdmi1 lock 1920x1080@9.999",
                            "signal hdmi1 lock 1920x1080@60.",
                            "signal hdmi1 lock 1920x1080@60.0001",
                            "signal hdmi1 lock 1920x1080@-60",
                            "signal hdmi1 lock 65536x1080@60",
                            "signal hdmi1 lock 1920x1080@60 pal",
                            "signal hdmi1 lock 1920x1080@60 ber=1",
                            "signal vga lock 1024x768@60 level=0",
                            "signal dtv lock 1920x1080i@50 ber=-1",
                            "signal av lock 720x576i@50 ntsc",
                            "signal av lock 1920x1080@60",
                            "signal none lock 1920x1080@60",
                            "source",
                            "source hdmi1 hdmi2"}) {
        EXPECT_EQ(order(bad), kOutOfRange) << bad;
    }
}

TEST_F(Inputs, CalibrationComesToTheSameResultFromAnyStartAndIsKept) {
    for (const unsigned source : {3u, 4u, 5u}) {
        ASSERT_EQ(a_zvttvfapi_inpsrc_auto_gain_offset(source), kOk);
        const std::vector<uint32_t> found = gainOffset(source);
        for (const auto& [gain, offset] : {std::pair(0u, 4095u), {16383u, 0u}}) {
            ASSERT_EQ(
                    a_zvttvfapi_inpsrc_set_adc_gain_offset(source, gain, gain, gain, offset, offset, offset),
                    kOk);
            ASSERT_EQ(a_zvttvfapi_inpsrc_auto_gain_offset(source), kOk)
                    << source << " from " << gain << " " << offset;
            const std::vector<uint32_t> again = gainOffset(source);
            for (size_t i = 0; i < found.size(); ++i) {
                // Two steps of the converter at either end, seen through the gain.
                EXPECT_NEAR(again[i], found[i], 6) << source << " from " << gain << " " << offset;
            }
        }
    }
    const std::vector<uint32_t> before = gainOffset(5);
    EXPECT_NE(before[0], before[1]) << "each channel has its own";
    restart();
    EXPECT_EQ(gainOffset(5), before);
}

TEST_F(Inputs, CalibrationThatFailsLeavesTheOneBefore) {
    ASSERT_EQ(a_zvttvfapi_inpsrc_set_adc_gain_offset(5, 1, 2, 3, 4, 5, 4095), kOk);
    ASSERT_EQ(a_zvttvfapi_inpsrc_set_adc_phase(5, 0, 1, 63), kOk);
    ASSERT_EQ(order("signal vga lock 1024x768@60 level=10"), kOk);
    int32_t second = 0;
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        second = a_zvttvfapi_inpsrc_auto_gain_offset(5);
    });
    EXPECT_EQ(a_zvttvfapi_inpsrc_auto_gain_offset(5), kNoConvergence);
    other.join();
    EXPECT_EQ(second, kBusy);
    ASSERT_EQ(order("signal vga lost"), kOk);
    EXPECT_EQ(a_zvttvfapi_inpsrc_auto_gain_offset(5), kAbsent);
    EXPECT_EQ(a_zvttvfapi_inpsrc_auto_gain_offset(6), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_inpsrc_auto_gain_offset(UINT32_MAX), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_inpsrc_set_adc_gain_offset(5, 16384, 0, 0, 0, 0, 0), kOutOfRange);
    EXPECT_EQ(a_zvttvfapi_inpsrc_set_adc_phase(5, 0, 0, 64), kOutOfRange);
    EXPECT_THAT(gainOffset(5), ElementsAre(1, 2, 3, 4, 5, 4095));
    ZvtTvFApiAdcPhase_t phase{};
    EXPECT_EQ(a_zvttvfapi_inpsrc_get_adc_phase(5, &phase), kOk);
    EXPECT_EQ(phase.u32BluePhase, 63u);
}

TEST_F(Inputs, KeepTheParametersOfTheVideoDecoder) {
    const struct {
        uint32_t parameter, value;
        int32_t status;
    } rows[] = {{1, 255, kOk}, {1, 256, kOutOfRange}, {0, UINT32_MAX, kOutOfRange}, {8, 0, kOutOfRange}};
    for (const auto& row : rows) {
        EXPECT_EQ(a_zvttvfapi_inpsrc_set_factory_vd_para(row.parameter, row.value), row.status);
    }
    restart();
    uint32_t value = 0;
    EXPECT_EQ(a_zvttvfapi_inpsrc_get_factory_vd_para(1, &value), kOk);
    EXPECT_EQ(value, 255u);
    EXPECT_EQ(a_zvttvfapi_inpsrc_get_factory_vd_para(8, &value), kOutOfRange);
}
