// A call of any method of the information interface, on the simulated board. Whatever the call says, the
// reply is one that our own reader accepts.

#include <vendor/zentrovi/tv/zvttvfactory/1.0/BnHwZvtTvFApiInformation.h>

#include <cstring>

#include "adapters/information/ZvtTvFApiInformation.h"
#include "fuzz/Input.h"
#include "platform/socket/Encoder.h"

using namespace android;
using namespace android::hardware;
using vendor::zentrovi::tv::zvttvfactory::V1_0::BnHwZvtTvFApiInformation;
using vendor::zentrovi::tv::zvttvfactory::V1_0::implementation::ZvtTvFApiInformation;

namespace {

void checkReply(const Parcel& reply) {
    Encoder encoder;
    MessageHeader head{};
    head.kind = MessageKind::Reply;
    fuzz::require(encoder.encode(head, reply, nullptr) == OK);
    const Gather gather = encoder.gather();
    const Block block = allocateBlock(gather.bytes);
    uint8_t* end = block.get();
    for (size_t i = 0; i < gather.count; ++i) {
        std::memcpy(end, gather.vectors[i].iov_base, gather.vectors[i].iov_len);
        end += gather.vectors[i].iov_len;
    }
    fuzz::require(fuzz::receive(block.get(), gather.bytes) != nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const sp<IBinder> sStub = new BnHwZvtTvFApiInformation(new ZvtTvFApiInformation);
    const Block block = fuzz::receive(data, size);
    if (block == nullptr) {
        return 0;
    }
    const Message message(block.get());
    const uint32_t code = message.header().code;
    const uint32_t flags = message.header().kind == MessageKind::OneWay ? IBinder::FLAG_ONEWAY : 0;
    Parcel call;
    Parcel reply;
    call.receive(fuzz::received(message));
    sStub->transact(code, call, &reply, flags, [](Parcel& results) { checkReply(results); });
    return 0;
}
