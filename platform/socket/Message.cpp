#include "platform/socket/Message.h"

namespace android::hardware {

Block allocateBlock(size_t size) {
    return Block(static_cast<uint8_t*>(std::malloc(size)));
}

namespace {
thread_local SizedBlock tSpare;
}

SizedBlock takeSpareBlock() {
    if (tSpare.capacity > 0) {
        return {std::move(tSpare.block), std::exchange(tSpare.capacity, 0)};
    }
    Block block = allocateBlock(kSmallBlockBytes);
    const size_t capacity = block == nullptr ? 0 : kSmallBlockBytes;
    return {std::move(block), capacity};
}

void returnSpareBlock(SizedBlock block) {
    if (block.capacity > tSpare.capacity && block.capacity <= kMaxSpareBytes) {
        tSpare = std::move(block);
    }
}

const char* Message::checkHeader(const MessageHeader& header) {
    if (header.magic != kMessageMagic) {
        return "a message begins with the magic number";
    }
    if (header.totalBytes > kMaxMessageBytes) {
        return "a message is at most 1 MiB long";
    }
    if (header.totalBytes < sizeof(MessageHeader) || header.totalBytes % 8 != 0) {
        return "a message's length covers its header and is a multiple of 8";
    }
    const size_t body = header.totalBytes - sizeof(MessageHeader);
    if (header.bufferCount > body / sizeof(BufferEntry)) {
        return "the buffer table lies within the message";
    }
    if (header.scalarBytes > body - header.bufferCount * sizeof(BufferEntry)) {
        return "the scalars lie within the message";
    }
    return nullptr;
}

const char* Message::check(uint8_t* bytes) {
    Message message(bytes);
    // A copy: as a reference it would be read anew after each entry that is written.
    const MessageHeader header = message.header();
    BufferEntry* const entries = message.entries();
    size_t offset =
            sizeof(MessageHeader) + header.bufferCount * sizeof(BufferEntry) + padded(header.scalarBytes);
    for (uint32_t i = 0; i < header.bufferCount; ++i) {
        BufferEntry& entry = entries[i];
        // A parent comes before its children, so that whatever points was checked before.
        if (entry.parent != kNoParent && (entry.parent >= i || entries[entry.parent].size < sizeof(void*) ||
                                          entry.parentOffset > entries[entry.parent].size - sizeof(void*) ||
                                          entry.parentOffset % 8 != 0)) {
            return "a buffer's parent is an earlier buffer with room for the pointer";
        }
        if (offset > header.totalBytes || entry.size > header.totalBytes - offset) {
            return "a buffer lies within the message";
        }
        entry.offset = static_cast<uint32_t>(offset);
        offset += padded(entry.size);
    }
    if (offset != header.totalBytes) {
        return "a message ends with its last buffer";
    }
    return nullptr;
}

}  // namespace android::hardware
