#include "fuzz/Input.h"

#include <android/log.h>

#include <cstdlib>
#include <cstring>

using namespace android::hardware;

namespace {

// Refusals are logged, and refusals are most of what happens here.
const bool sQuiet = [] {
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
    return true;
}();

}  // namespace

namespace fuzz {

Message receive(const uint8_t* data, size_t size) {
    MessageHeader head;
    if (size < sizeof(head)) {
        return {};
    }
    std::memcpy(&head, data, sizeof(head));
    if (Message::checkHeader(head) != nullptr || head.totalBytes > size) {
        return {};
    }
    Block block = allocateBlock(head.totalBytes);
    std::memcpy(block.get(), data, head.totalBytes);
    if (Message::check(block.get()) != nullptr) {
        return {};
    }
    return Message(std::move(block));
}

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

}  // namespace fuzz
