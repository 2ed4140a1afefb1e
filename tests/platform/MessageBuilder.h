#pragma once

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "platform/socket/Message.h"

/** The parts of a text or sequence in a record as a sender may claim them. */
struct RawReference {
    uint64_t address;
    uint32_t size;
    uint8_t owner;
    uint8_t pad[3];
};
static_assert(sizeof(RawReference) == 16);

/** Bytes of a message, well-formed but for what it is told to get wrong. */
class MessageBuilder {
  public:
    explicit MessageBuilder(android::hardware::MessageKind kind = android::hardware::MessageKind::Call) {
        mHead.magic = android::hardware::kMessageMagic;
        mHead.kind = kind;
    }

    template <typename T>
    MessageBuilder& scalar(const T& value) {
        append(mScalars, &value, sizeof(value));
        return *this;
    }
    MessageBuilder& text(const char* value) {
        append(mScalars, value, std::strlen(value) + 1);
        return *this;
    }
    MessageBuilder& record(const void* data, size_t size, uint32_t parent = android::hardware::kNoParent,
                           uint32_t parentOffset = 0) {
        mEntries.push_back({static_cast<uint32_t>(size), parent, parentOffset, 0});
        append(mBuffers, data, size);
        mBuffers.resize(android::hardware::padded(mBuffers.size()));
        return *this;
    }
    MessageBuilder& buffer(const std::string& bytes, uint32_t parent = android::hardware::kNoParent,
                           uint32_t parentOffset = 0) {
        return record(bytes.data(), bytes.size(), parent, parentOffset);
    }
    /** The record of a text or sequence, which the next buffer belongs to; its address is a wild one. */
    MessageBuilder& reference(uint32_t size, uint8_t owner = 0) {
        const RawReference raw{0xdeadbeef00000000u, size, owner, {}};
        return record(&raw, sizeof(raw));
    }
    /** Changes the head after its lengths have been filled in. */
    MessageBuilder& lieInHead(std::function<void(android::hardware::MessageHeader&)> lie) {
        mHeadLie = std::move(lie);
        return *this;
    }
    MessageBuilder& lieInEntry(size_t index, std::function<void(android::hardware::BufferEntry&)> lie) {
        lie(mEntries[index]);
        return *this;
    }
    /** Bytes that nothing accounts for. */
    MessageBuilder& trailing(size_t bytes) {
        mBuffers.resize(mBuffers.size() + bytes);
        return *this;
    }

    std::vector<uint8_t> bytes() const {
        std::vector<uint8_t> body;
        append(body, mEntries.data(), mEntries.size() * sizeof(mEntries[0]));
        append(body, mScalars.data(), mScalars.size());
        body.resize(android::hardware::padded(body.size()));
        append(body, mBuffers.data(), mBuffers.size());
        android::hardware::MessageHeader head = mHead;
        head.totalBytes = static_cast<uint32_t>(sizeof(head) + body.size());
        head.scalarBytes = static_cast<uint32_t>(mScalars.size());
        head.bufferCount = static_cast<uint32_t>(mEntries.size());
        if (mHeadLie) {
            mHeadLie(head);
        }
        std::vector<uint8_t> all;
        append(all, &head, sizeof(head));
        append(all, body.data(), body.size());
        return all;
    }

    /** Copies bytes into a block of their size, and puts them through both checks; *rule is the broken one.
     */
    static android::hardware::Message receive(const std::vector<uint8_t>& bytes, const char** rule) {
        android::hardware::Block block = android::hardware::allocateBlock(bytes.size());
        std::memcpy(block.get(), bytes.data(), bytes.size());
        android::hardware::Message message(std::move(block));
        *rule = android::hardware::Message::checkHeader(message.header());
        if (*rule == nullptr) {
            *rule = android::hardware::Message::check(message.bytes());
        }
        return message;
    }

  private:
    static void append(std::vector<uint8_t>& bytes, const void* data, size_t size) {
        const auto* first = static_cast<const uint8_t*>(data);
        bytes.insert(bytes.end(), first, first + size);
    }

    android::hardware::MessageHeader mHead{};
    std::vector<android::hardware::BufferEntry> mEntries;
    std::vector<uint8_t> mScalars;
    std::vector<uint8_t> mBuffers;
    std::function<void(android::hardware::MessageHeader&)> mHeadLie;
};
