// Module inpsrc.

#include "simulator/board/ChipCall.h"
#include "simulator/board/DriveOrders.h"
#include "simulator/board/Module.h"
#include "simulator/inputs/AdcCalibration.h"
#include "simulator/inputs/Receiver.h"
#include "simulator/modules/ChipLayer.h"
#include "simulator/panel/Panel.h"

using namespace simulator;
using namespace fapi_core;

namespace {

std::string describe();

Module& self() {
    static Module& sModule = *new Module("inpsrc", describe);
    return sModule;
}

/** How the pictures of the sources can be told apart: by their motif, and by the hue within one. */
void showOnPanel(const Receiver::State& state) {
    InputSignal input;
    switch (typeOf(state.source)) {
        case INPUT_SOURCE_TYPE_TUNER:
            input.motif = InputMotif::Hills;
            input.hue = state.source == INPUT_SOURCE_ATV ? 90 : 140;
            break;
        case INPUT_SOURCE_TYPE_COMPOSITE:
            input.motif = InputMotif::Stripes;
            input.hue = 20;
            break;
        case INPUT_SOURCE_TYPE_COMPONENT:
            input.motif = InputMotif::Discs;
            break;
        case INPUT_SOURCE_TYPE_PC:
            input.motif = InputMotif::Tiles;
            input.hue = 210;
            break;
        case INPUT_SOURCE_TYPE_HDMI:
            input.motif = InputMotif::Diamonds;
            input.hue = 250 + 40U * (state.source - INPUT_SOURCE_HDMI1);
            break;
        case INPUT_SOURCE_TYPE_MEDIA:
            input.motif = InputMotif::Film;
            input.hue = 170;
            break;
        default:
            break;
    }
    const Signal& signal = state.signal;
    input.name = nameOf(state.source);
    input.locked = state.locked;
    if (state.locked) {
        input.timing = signal.describe();
        if (signal.standard != VIDEO_STANDARD_UNKNOWN) {
            input.timing += std::string(" ") + nameOf(signal.standard);
        }
        input.width = signal.width;
        input.height = signal.height;
        // The pixels of standard definition are not square.
        input.wide = signal.width != 720 || (signal.height != 480 && signal.height != 576);
    }
    panel().setInput(input);
}

Receiver& receiver() {
    static Receiver& sReceiver = *new Receiver(self(), showOnPanel);
    return sReceiver;
}

std::string describe() {
    const Receiver::State state = receiver().state();
    return std::string("source ") + nameOf(state.source) + "\nlock " +
           (state.locked ? state.signal.describe() : "none") + "\n" + inputSettings().describe();
}

/** What an order's status means to those who gave it. */
std::string fault(int32_t status) {
    return status == kOk ? "" : "it cannot be kept (status " + std::to_string(status) + ")";
}

std::string obeySignal(const std::vector<std::string>& words) {
    const auto source = words.empty() ? std::nullopt : sourceNamed(words[0]);
    if (!source) {
        return "no source such as hdmi1";
    }
    Signal signal;
    if (words.size() == 2 && words[1] == "lost") {
        return fault(receiver().setSignal(*source, signal));
    }
    if (words.size() < 2 || words[1] != "lock") {
        return "neither \"lock\" nor \"lost\"";
    }
    const std::string wrong = parseSignal(*source, {words.begin() + 2, words.end()}, &signal);
    return wrong.empty() ? fault(receiver().setSignal(*source, signal)) : wrong;
}

std::string obeySource(const std::vector<std::string>& words) {
    const auto source = words.size() != 1 ? std::nullopt : sourceNamed(words[0]);
    return source ? fault(receiver().select(*source)) : "no source such as hdmi1";
}

void addOrders() {
    static const bool sAdded = [] {
        addDriveOrders({{"signal",
                         "signal SOURCE lost, or signal SOURCE lock WIDTHxHEIGHT[i]@HERTZ [STANDARD] "
                         "[ber=NUMBER] [level=PERCENT]",
                         obeySignal},
                        {"source", "source SOURCE", obeySource}});
        return true;
    }();
    (void)sAdded;
}

/** Hands a getter's value over unless there is no place for it. */
template <typename T, typename Value>
int32_t give(T* result, Value value) {
    if (result == nullptr) {
        return kOutOfRange;
    }
    *result = static_cast<T>(value);
    return kOk;
}

}  // namespace

int32_t a_zvttvfapi_inpsrc_init() {
    return guarded([] {
        const int32_t status = self().init();
        if (status == kOk) {
            inputSettings().load();
            receiver().start();
            addOrders();
        }
        return status;
    });
}

int32_t a_zvttvfapi_inpsrc_deinit() {
    return guarded([] {
        receiver().stop();
        return self().deinit();
    });
}

int32_t a_zvttvfapi_inpsrc_reg_callback(ZvtTvFApiEventHandler pfnHandler) {
    return self().registerHandler(pfnHandler);
}

int32_t a_zvttvfapi_inpsrc_unreg_callback() {
    return self().unregisterHandler();
}

int32_t a_zvttvfapi_inpsrc_auto_gain_offset(unsigned int u32DevType) {
    return guarded([&] { return calibrate(u32DevType); });
}

int32_t a_zvttvfapi_inpsrc_set_adc_phase(unsigned int u32Source, unsigned int u32RedPhase,
                                         unsigned int u32GreenPhase, unsigned int u32BluePhase) {
    return guarded([&] {
        return setCalibration(u32Source, inputs::kPhases, {u32RedPhase, u32GreenPhase, u32BluePhase});
    });
}

int32_t a_zvttvfapi_inpsrc_set_adc_gain_offset(unsigned int u32Source, unsigned int u32RedGain,
                                               unsigned int u32GreenGain, unsigned int u32BlueGain,
                                               unsigned int u32RedOffset, unsigned int u32GreenOffset,
                                               unsigned int u32BlueOffset) {
    return guarded([&] {
        return setCalibration(
                u32Source, inputs::kGainOffsets,
                {u32RedGain, u32GreenGain, u32BlueGain, u32RedOffset, u32GreenOffset, u32BlueOffset});
    });
}

int32_t a_zvttvfapi_inpsrc_get_adc_phase(unsigned int u32Source, ZvtTvFApiAdcPhase_t* pstPhase) {
    return guarded([&] {
        std::vector<int64_t> phase;
        const int32_t status =
                pstPhase == nullptr ? kOutOfRange : getCalibration(u32Source, inputs::kPhases, &phase);
        if (status == kOk) {
            *pstPhase = {static_cast<uint32_t>(phase[0]), static_cast<uint32_t>(phase[1]),
                         static_cast<uint32_t>(phase[2])};
        }
        return status;
    });
}

int32_t a_zvttvfapi_inpsrc_get_adc_gain_offset(unsigned int u32Source,
                                               ZvtTvFApiAdcGainOffset_t* pstGainOffset) {
    return guarded([&] {
        std::vector<int64_t> found;
        const int32_t status = pstGainOffset == nullptr
                                       ? kOutOfRange
                                       : getCalibration(u32Source, inputs::kGainOffsets, &found);
        if (status == kOk) {
            *pstGainOffset = {static_cast<uint32_t>(found[0]), static_cast<uint32_t>(found[1]),
                              static_cast<uint32_t>(found[2]), static_cast<uint32_t>(found[3]),
                              static_cast<uint32_t>(found[4]), static_cast<uint32_t>(found[5])};
        }
        return status;
    });
}

int32_t a_zvttvfapi_inpsrc_get_video_standard(unsigned char* pu8Standard) {
    return guarded([&] { return give(pu8Standard, receiver().state().signal.standard); });
}

int32_t a_zvttvfapi_inpsrc_check_vd_signal_locked(unsigned char* pu8Locked) {
    return guarded([&] {
        const Receiver::State state = receiver().state();
        return give(pu8Locked, state.locked && isAnalogueVideo(state.source));
    });
}

int32_t a_zvttvfapi_inpsrc_vif_init() {
    return guarded([] {
        receiver().restartTuner();
        return kOk;
    });
}

int32_t a_zvttvfapi_inpsrc_set_factory_vd_para(unsigned int u32Param, unsigned int u32Value) {
    return guarded([&] {
        return u32Param >= kVdParameterCount
                       ? kOutOfRange
                       : inputSettings().change(inputs::kFactoryVd, [&](KeptNumbers::Values& parameters) {
                             parameters[u32Param] = u32Value;
                         });
    });
}

int32_t a_zvttvfapi_inpsrc_get_factory_vd_para(unsigned int u32Param, unsigned int* pu32Value) {
    return guarded([&] {
        return u32Param >= kVdParameterCount
                       ? kOutOfRange
                       : give(pu32Value, (*inputSettings().get())[inputs::kFactoryVd][u32Param]);
    });
}

int32_t a_zvttvfapi_inpsrc_get_current_input_source(unsigned char* pu8Source) {
    return guarded([&] { return give(pu8Source, receiver().state().source); });
}

int32_t a_zvttvfapi_inpsrc_get_current_input_source_type(unsigned char* pu8Type) {
    return guarded([&] { return give(pu8Type, typeOf(receiver().state().source)); });
}

int32_t a_zvttvfapi_inpsrc_get_input_timing(ZvtTvFApiVideoTiming& stTiming) {
    return guarded([&] {
        const Receiver::State state = receiver().state();
        stTiming = state.locked ? state.signal.timing() : ZvtTvFApiVideoTiming{};
        return kOk;
    });
}

int32_t a_zvttvfapi_inpsrc_get_ber(int* ps32Ber) {
    return guarded([&] {
        const Receiver::State state = receiver().state();
        // The demodulator rests while another source is current, and counts nothing without a lock.
        return state.locked && state.source == INPUT_SOURCE_DTV ? give(ps32Ber, state.signal.bitErrors)
                                                                : kAbsent;
    });
}
