#include "simulator/peripheral/Peripherals.h"

#include "simulator/board/DriveOrders.h"
#include "simulator/board/Events.h"
#include "simulator/board/Status.h"
#include "simulator/storage/IniStore.h"

namespace simulator {
namespace {

using Words = std::vector<std::string>;

constexpr const char* kNoAction = "that is no press or release";

std::string describe() {
    Peripherals& board = peripherals();
    return board.serial.describe() + board.buses.describe() + board.gpio.describe() + board.pwm.describe() +
           board.keys.describe() + board.hdmi.describe();
}

/** Empty for kOk, else what the order says of a failure. */
std::string fault(int32_t status, const char* refused) {
    return status == kOk ? "" : refused;
}

bool number(const Words& words, size_t at, uint64_t most, uint64_t* value) {
    return at < words.size() && readDriveNumber(words[at], most, value);
}

/** Does it for the key's going down, its coming up, or one after the other when the order says neither. */
template <typename Press>
std::string pressed(const Words& words, size_t at, Press press) {
    if (words.size() > at + 1 || (words.size() == at + 1 && words[at] != "press" && words[at] != "release")) {
        return kNoAction;
    }
    std::string wrong;
    if (words.size() == at || words[at] == "press") {
        wrong = press(true);
    }
    if (wrong.empty() && (words.size() == at || words[at] == "release")) {
        wrong = press(false);
    }
    return wrong;
}

std::string driveGpio(const Words& words) {
    uint64_t line = 0, level = 0;
    if (words.size() != 2 || !number(words, 0, Gpio::kLines - 1, &line) || !number(words, 1, 1, &level)) {
        return "there is no such line or level";
    }
    return fault(peripherals().gpio.setOutside(static_cast<unsigned>(line), level == 1),
                 "the board drives that line itself");
}

std::string driveKey(const Words& words) {
    uint64_t code = 0;
    if (!number(words, 0, UINT32_MAX, &code)) {
        return "that is no key's code";
    }
    return pressed(words, 1, [code](bool down) {
        return fault(peripherals().keys.pressKey(static_cast<uint32_t>(code), down),
                     "the keypad has no key of that code");
    });
}

std::string driveRemoteKey(const Words& words) {
    uint64_t custom = 0, code = 0;
    if (!number(words, 0, UINT64_MAX, &custom) || !number(words, 1, UINT32_MAX, &code)) {
        return "that is no remote control's and key's code";
    }
    return pressed(words, 2, [custom, code](bool down) {
        return fault(peripherals().keys.pressRemoteKey(custom, static_cast<uint32_t>(code), down),
                     "the key is blocked");
    });
}

std::string driveAdc(const Words& words) {
    uint64_t channel = 0, value = 0;
    if (words.size() != 2 || !number(words, 0, Keys::kChannels - 1, &channel) ||
        !number(words, 1, Keys::kMaxValue, &value)) {
        return "there is no such channel or value";
    }
    return fault(peripherals().keys.setAdc(static_cast<unsigned>(channel), static_cast<unsigned>(value)),
                 "it is refused");
}

std::string driveHdmi(const Words& words) {
    uint64_t port = 0;
    if (words.size() != 2 || !number(words, 0, HdmiPorts::kPorts, &port) ||
        (words[1] != "connect" && words[1] != "disconnect")) {
        return "there is no such port or state of it";
    }
    return fault(peripherals().hdmi.setCable(static_cast<unsigned>(port), words[1] == "connect"),
                 "there is no such port");
}

std::string driveAudioReturn(const Words& words) {
    uint64_t state = 0;
    if (words.size() != 1 || !number(words, 0, 2, &state)) {
        return "there is no such state";
    }
    return fault(peripherals().hdmi.setAudioReturn(static_cast<int>(state)), "it is refused");
}

Module::Payload records(uint32_t first, const std::string& text, uint32_t second) {
    Module::Payload payload;
    payload.objects[0].u32Value = first;
    payload.objects[0].strValue = text;
    payload.objects[1].u32Value = second;
    return payload;
}

constexpr const char* kProtocols[] = {"nec", "rc5", "rc6", "sirc"};  // by their numbers

struct Remote {
    const char* name;
    const char* protocol;
};
/** What remotes.ini may add to or overrule. */
constexpr Remote kRemotes[] = {{"factory", "nec"}, {"user", "rc6"}, {"hotel", "rc5"}};

}  // namespace

Peripherals::Peripherals()
    : module("prphrl", describe),
      gpio(dispatcher,
           [this](unsigned line, bool level) {
               Dispatcher::deliver(module, kPrphrlGpio, records(line, "", level));
           }),
      keys({[this](uint32_t code, Keys::Source source, bool down) {
                const char* const from = source == Keys::Source::kRemote ? "ir" : "keypad";
                dispatcher.raise(module, kPrphrlKey, records(code, from, down));
            },
            [this](unsigned channel, unsigned value) {
                dispatcher.raise(module, kPrphrlAdc, records(channel, "", value));
            }}),
      hdmi([this](unsigned port, bool up) { dispatcher.raise(module, kPrphrlHdmi, records(port, "", up)); }),
      serial([this](SerialPorts::Uart uart, int port, const std::string& bytes) {
          Module::Payload payload;
          payload.objects[0].u32Value = static_cast<uint32_t>(port);
          payload.objects[0].vecValue.assign(bytes.begin(), bytes.end());
          dispatcher.raise(module, uart == SerialPorts::kFactory ? kPrphrlFactoryUart : kPrphrlStdUart,
                           std::move(payload));
      }) {
    addDriveOrders({{"gpio", "gpio LINE 0|1", driveGpio},
                    {"key", "key CODE [press|release]", driveKey},
                    {"irkey", "irkey CUSTOM-CODE CODE [press|release]", driveRemoteKey},
                    {"adc", "adc CHANNEL VALUE", driveAdc},
                    {"hdmi", "hdmi PORT connect|disconnect", driveHdmi},
                    {"earc", "earc 0|1|2", driveAudioReturn}});
}

int32_t Peripherals::init() {
    const int32_t status = module.init();
    if (status != kOk) {
        return status;
    }
    gpio.reset();
    keys.reset();
    pwm.reset();
    buses.reset();
    hdmi.reset();
    // A host without pseudo-terminals has the other peripherals all the same; why there are none was said.
    (void)serial.open();
    return kOk;
}

int32_t Peripherals::deinit() {
    const int32_t status = module.deinit();
    if (status == kOk) {
        gpio.unwatch();
        keys.reset();
        serial.close();
    }
    return status;
}

Peripherals& peripherals() {
    static Peripherals& sPeripherals = *new Peripherals;
    return sPeripherals;
}

int32_t remoteProtocol(const char* name, unsigned char* protocol) {
    if (name == nullptr || protocol == nullptr) {
        return kOutOfRange;
    }
    char spoken[16];
    std::string speaks;
    const int32_t status =
            boardIni().get("remotes", (std::string("remotes:") + name).c_str(), spoken, sizeof(spoken));
    if (status == kOk) {
        speaks = spoken;
    } else if (status != kNotFound) {
        return status == kTooLong ? kBadData : status;
    }
    for (const Remote& remote : kRemotes) {
        speaks = speaks.empty() && remote.name == std::string(name) ? remote.protocol : speaks;
    }
    if (speaks.empty()) {
        return kNotFound;
    }
    for (size_t i = 0; i < sizeof(kProtocols) / sizeof(kProtocols[0]); ++i) {
        if (speaks == kProtocols[i]) {
            *protocol = static_cast<unsigned char>(i);
            return kOk;
        }
    }
    return kBadData;
}

}  // namespace simulator
