// Calls of one interface's methods, the one whose name ends the program's, on the objects that the service
// serves: fuzz-board-audio on the simulated board, fuzz-chip-audio on a library that answers anything.
//
// An input is a message as a foreign process sends it, which begins with a message's magic, or two bytes for
// the library (see ExtremeChipLayer.h), whose second says by its highest bit that the calls go as they do
// through the binder driver, and calls: a method's number, how many bytes its arguments are
// chosen by, how many spoil the message, and these. A call that is not spoiled has to be answered.

#include <hidl/HidlTransportSupport.h>
#include <service/trace/TracedInterfaces.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/BpHwZvtTvFApiAudio.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/BpHwZvtTvFApiCallbackManager.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/BpHwZvtTvFApiDisplay.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/BpHwZvtTvFApiDisplayTest.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/BpHwZvtTvFApiInformation.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/BpHwZvtTvFApiInputSource.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/BpHwZvtTvFApiManager.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/BpHwZvtTvFApiNetwork.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/BpHwZvtTvFApiPeripheral.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/BpHwZvtTvFApiSystem.h>
#include <vendor/zentrovi/tv/zvttvfactory/1.0/BpHwZvtTvFApiTv.h>

#include <cctype>
#include <cstring>

#include "adapters/audio/ZvtTvFApiAudio.h"
#include "adapters/display/ZvtTvFApiDisplay.h"
#include "adapters/displaytest/ZvtTvFApiDisplayTest.h"
#include "adapters/information/ZvtTvFApiInformation.h"
#include "adapters/information/ZvtTvFApiTv.h"
#include "adapters/inputsource/ZvtTvFApiInputSource.h"
#include "adapters/network/ZvtTvFApiNetwork.h"
#include "adapters/peripheral/ZvtTvFApiPeripheral.h"
#include "adapters/system/ZvtTvFApiSystem.h"
#include "chiplayer/chiplayer.h"
#include "fuzz/ExtremeChipLayer.h"
#include "fuzz/Input.h"
#include "fuzz/Loopback.h"
#include "fuzz/State.h"
#include "fuzz/Values.h"
#include "manager/ZvtTvFApiManager.h"
#include "service/frame/Debug.h"
#include "tools/fapictl/FactoryPackage.h"

using namespace android;
using namespace android::hardware;
using namespace vendor::zentrovi::tv::zvttvfactory::V1_0;
using namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation;

namespace {

/** One interface of the service, as a client in another process has it. */
struct Served {
    const fapictl::Interface* interface = nullptr;
    sp<IBinder> stub;
    sp<fuzz::Loopback> sent;
    sp<hidl::base::V1_0::IBase> proxy;
};

Served& served() {
    static Served& sServed = *new Served;
    return sServed;
}

template <typename Proxy, typename Object>
bool serve(const std::string& ending, const sp<Object>& object) {
    const fapictl::Package& package = fapictl::factoryPackage();
    const std::string descriptor = Object::descriptor;
    std::string name = descriptor.substr(descriptor.find("FApi") + 4);
    for (char& letter : name) {
        letter = static_cast<char>(std::tolower(letter));
    }
    if (name != ending) {
        return false;
    }
    for (const fapictl::Interface& interface : package.interfaces) {
        if (interface.descriptor == descriptor) {
            served().interface = &interface;
        }
    }
    served().stub = toBinder<Object>(object);
    served().sent = new fuzz::Loopback(served().stub);
    served().proxy = new Proxy(served().sent);
    return true;
}

/** In place of a method's number: the library raises an event. */
constexpr uint8_t kRaises = 255;

void call(fuzz::Choices& choices) {
    const auto& methods = served().interface->methods;
    const uint8_t number = choices.byte();
    const size_t argumentBytes = choices.byte();
    const size_t spoilBytes = choices.byte();
    fuzz::Choices arguments = choices.take(argumentBytes);
    served().sent->spoilBy(choices.take(spoilBytes));
    if (number == kRaises && raiseEvent != nullptr) {
        const uint8_t module = arguments.byte();
        const auto type = static_cast<uint32_t>(arguments.number(4));
        raiseEvent(module, type, arguments.rest());
        return;
    }
    if (methods.empty()) {
        return;
    }
    const fapictl::Method& method = methods[number % methods.size()];
    fapictl::Json values = fapictl::Json::array();
    for (const fapictl::Field& argument : method.arguments) {
        values.push_back(fuzz::makeValue(*argument.type, arguments));
    }
    const fapictl::Reply reply = method.call(*served().proxy, values);
    fuzz::require(!served().sent->wasSound() || (reply.failure.empty() && !reply.results.empty()));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char*** arguments) {
    fuzz::stateFolder();
    u8TvFactoryDebug = 1;
    const std::string program = (*arguments)[0];
    const std::string name = program.substr(program.rfind('-') + 1);
    // It initialises the library for all of them.
    static const sp<ZvtTvFApiManager>& manager = *new sp<ZvtTvFApiManager>(new Traced<ZvtTvFApiManager>);
    // Clients for its events: they take some, and have ended for others.
    for (int i = 0; i < 2; ++i) {
        fuzz::require(manager->a_hidl_a_zvttvfapi_mngr_set_callback(
                              new BpHwZvtTvFApiCallbackManager(fuzz::foreignObject())) == 0);
    }
    fuzz::require(serve<BpHwZvtTvFApiManager>(name, manager) ||
                  serve<BpHwZvtTvFApiAudio>(name, sp(new Traced<ZvtTvFApiAudio>)) ||
                  serve<BpHwZvtTvFApiDisplay>(name, sp(new Traced<ZvtTvFApiDisplay>)) ||
                  serve<BpHwZvtTvFApiDisplayTest>(name, sp(new Traced<ZvtTvFApiDisplayTest>)) ||
                  serve<BpHwZvtTvFApiInformation>(name, sp(new Traced<ZvtTvFApiInformation>)) ||
                  serve<BpHwZvtTvFApiInputSource>(name, sp(new Traced<ZvtTvFApiInputSource>)) ||
                  serve<BpHwZvtTvFApiNetwork>(name, sp(new Traced<ZvtTvFApiNetwork>)) ||
                  serve<BpHwZvtTvFApiPeripheral>(name, sp(new Traced<ZvtTvFApiPeripheral>)) ||
                  serve<BpHwZvtTvFApiSystem>(name, sp(new Traced<ZvtTvFApiSystem>)) ||
                  serve<BpHwZvtTvFApiTv>(name, sp(new Traced<ZvtTvFApiTv>)));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::makeReady();
    if (size >= sizeof(kMessageMagic) && std::memcmp(data, &kMessageMagic, sizeof(kMessageMagic)) == 0) {
        const Block message = fuzz::receive(data, size);
        Parcel reply;
        bool fits = true;
        if (message != nullptr) {
            fuzz::deliver(served().stub, message.get(), &reply, &fits);
        }
        return 0;
    }
    fuzz::Choices choices(data, size);
    const uint8_t outputs = choices.byte();
    const uint8_t results = choices.byte();
    served().sent->goThroughDriver(results >= 128);
    if (setAnswers != nullptr) {
        setAnswers(outputs, results);
    }
    while (!choices.atEnd()) {
        call(choices);
    }
    if (setAnswers != nullptr) {
        setAnswers(0, 0);
    }
    return 0;
}
