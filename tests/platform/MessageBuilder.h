#pragma once

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/socket/Encoder.h"

/** The parts of a text or sequence in a record as a sender may claim them. */
struct RawReference {
    uint64_t address;
    uint32_t size;
    uint8_t owner;
    uint8_t pad[3];
};
static_assert(sizeof(RawReference) == 16);

/** An object that nobody calls. */
class NoObject : public android::hardware::BHwBinder {
    android::status_t onTransact(uint32_t, const android::hardware::Parcel&, android::hardware::Parcel*,
                                 uint32_t, TransactCallback) override {
        return android::UNKNOWN_TRANSACTION;
    }
};

/** Notes what becomes of the objects of messages, by their numbers. */
struct NotedObjects final : android::hardware::ObjectSource {
    android::status_t takeObject(const uint8_t* form, android::sp<android::hardware::IBinder>*) override {
        taken.push_back(number(form));
        return android::OK;
    }
    void dropObject(const uint8_t* form) override { dropped.push_back(number(form)); }

    std::vector<uint64_t> taken;
    std::vector<uint64_t> dropped;

  private:
    static uint64_t number(const uint8_t* form) {
        android::hardware::ObjectReference reference;
        std::memcpy(&reference, form, sizeof(reference));
        return reference.object;
    }
};

/** The bytes that a socket would carry. */
inline std::vector<uint8_t> bytesOf(const android::hardware::Gather& gather) {
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < gather.count; ++i) {
        const auto* first = static_cast<const uint8_t*>(gather.vectors[i].iov_base);
        bytes.insert(bytes.end(), first, first + gather.vectors[i].iov_len);
    }
    return bytes;
}

/** Bytes of a message, well-formed but for what it is told to get wrong. */
class MessageBuilder {
  public:
    explicit MessageBuilder(android::hardware::MessageKind kind = android::hardware::MessageKind::Call) {
        mHead.magic = android::hardware::kMessageMagic;
        mHead.kind = kind;
    }

    MessageBuilder& to(const android::hardware::ObjectReference& object, uint32_t code) {
        mHead.object = object.object;
        mHead.nonce = object.nonce;
        mHead.code = code;
        return *this;
    }
    template <typename T>
    MessageBuilder& scalar(const T& value) {
        append(mScalars, &value, sizeof(value));
        return alignScalars();
    }
    MessageBuilder& text(const char* value) {
        append(mScalars, value, std::strlen(value) + 1);
        return alignScalars();
    }
    /** Bytes among the scalars, without padding. */
    MessageBuilder& raw(const std::string& bytes) {
        append(mScalars, bytes.data(), bytes.size());
        return *this;
    }
    /** An object by its number; 0: null. */
    MessageBuilder& object(uint64_t number) {
        if (number != 0) {
            return object({{}, number, 0});
        }
        mPieces.push_back({0, android::hardware::kIsObject, 0, 0});
        return *this;
    }
    MessageBuilder& object(const android::hardware::ObjectReference& reference) {
        mPieces.push_back({1, android::hardware::kIsObject, 0, 0});
        return strayReference(reference);
    }
    /** Descriptors of the native handle that the last buffer is. */
    MessageBuilder& descriptors(uint32_t count) {
        mPieces.push_back({count, android::hardware::kIsDescriptors, 0, 0});
        mHead.descriptorCount = static_cast<uint16_t>(mHead.descriptorCount + count);
        return *this;
    }
    /** A reference that has no piece. */
    MessageBuilder& strayReference(const android::hardware::ObjectReference& reference) {
        mReferences.push_back(reference);
        return *this;
    }
    MessageBuilder& record(const void* data, size_t size, uint32_t parent = android::hardware::kNoParent,
                           uint32_t parentOffset = 0) {
        mPieces.push_back({static_cast<uint32_t>(size), parent, parentOffset, 0});
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
    MessageBuilder& lieInPiece(size_t index, std::function<void(android::hardware::ParcelPiece&)> lie) {
        lie(mPieces[index]);
        return *this;
    }
    /** Bytes that nothing accounts for. */
    MessageBuilder& trailing(size_t bytes) {
        mBuffers.resize(mBuffers.size() + bytes);
        return *this;
    }

    std::vector<uint8_t> bytes() const {
        std::vector<uint8_t> body;
        append(body, mPieces.data(), mPieces.size() * sizeof(mPieces[0]));
        append(body, mReferences.data(), mReferences.size() * sizeof(mReferences[0]));
        append(body, mScalars.data(), mScalars.size());
        body.resize(android::hardware::padded(body.size()));
        append(body, mBuffers.data(), mBuffers.size());
        android::hardware::MessageHeader head = mHead;
        head.totalBytes = static_cast<uint32_t>(sizeof(head) + body.size());
        head.scalarBytes = static_cast<uint32_t>(mScalars.size());
        head.pieceCount = static_cast<uint32_t>(mPieces.size());
        head.objectCount = static_cast<uint32_t>(mReferences.size());
        if (mHeadLie) {
            mHeadLie(head);
        }
        std::vector<uint8_t> all;
        append(all, &head, sizeof(head));
        append(all, body.data(), body.size());
        return all;
    }

    /**
     * Makes a parcel the reader of a message, in a block of its very size.
     *
     * @return the rule that it breaks; else null
     */
    static const char* receive(const std::vector<uint8_t>& all, android::hardware::Parcel* parcel,
                               std::shared_ptr<android::hardware::ObjectSource> objects = nullptr) {
        android::hardware::Block block = android::hardware::allocateBlock(all.size());
        std::memcpy(block.get(), all.data(), all.size());
        const android::hardware::Message message(block.get());
        const char* rule = android::hardware::Message::checkHeader(message.header());
        if (rule == nullptr) {
            rule = android::hardware::Message::check(block.get());
        }
        if (rule == nullptr) {
            android::hardware::ReceivedParcel received = message.received();
            received.objects = std::move(objects);
            received.memory = {block.release(), all.size(), [](void* memory, size_t) { std::free(memory); }};
            parcel->receive(std::move(received));
        }
        return rule;
    }

  private:
    static void append(std::vector<uint8_t>& bytes, const void* data, size_t size) {
        const auto* first = static_cast<const uint8_t*>(data);
        bytes.insert(bytes.end(), first, first + size);
    }

    MessageBuilder& alignScalars() {
        mScalars.resize((mScalars.size() + 3) / 4 * 4);
        return *this;
    }

    android::hardware::MessageHeader mHead{};
    std::vector<android::hardware::ParcelPiece> mPieces;
    std::vector<android::hardware::ObjectReference> mReferences;
    std::vector<uint8_t> mScalars;
    std::vector<uint8_t> mBuffers;
    std::function<void(android::hardware::MessageHeader&)> mHeadLie;
};
