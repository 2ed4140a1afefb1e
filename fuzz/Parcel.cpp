// A message, then the reads of a stub that expects whatever the first bytes of the input say.

#include <hwbinder/Parcel.h>

#include "fuzz/Input.h"
#include "fuzz/Reads.h"

using namespace android::hardware;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < fuzz::kReads) {
        return 0;
    }
    const Block block = fuzz::receive(data + fuzz::kReads, size - fuzz::kReads);
    if (block == nullptr) {
        return 0;
    }
    Parcel parcel;
    parcel.receive(fuzz::received(Message(block.get())));
    for (size_t i = 0; i < fuzz::kReads; ++i) {
        fuzz::read(parcel, data[i]);
    }
    return 0;
}
