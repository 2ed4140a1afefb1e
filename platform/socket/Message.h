#pragma once

#include <hwbinder/Parcel.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <utility>

#include "platform/binding/Descriptors.h"

namespace android::hardware {

/** What a connection's first read is offered, and the size of a block that most messages fit in. */
constexpr size_t kSmallBlockBytes = 4096;

/** Names one process: the random name of the socket that it listens on. All zero is nobody. */
using Endpoint = std::array<uint8_t, 16>;

/** Names one object of one process. The nonce is random: who was not given it can not make it up. */
struct ObjectReference {
    Endpoint endpoint;
    uint64_t object;
    uint64_t nonce;

    bool operator==(const ObjectReference& other) const {
        return endpoint == other.endpoint && object == other.object && nonce == other.nonce;
    }
};
static_assert(sizeof(ObjectReference) == 32);

enum class MessageKind : uint16_t {
    HelloCall = 1,  // first on a connection that carries calls; object and nonce hold the sender's endpoint
    HelloControl = 2,  // first on a connection that carries the kinds from OneWay on
    Call = 3,
    Reply = 4,
    OneWay = 5,
    HandOver = 6,     // the sender gives a reference to the object to the process whose endpoint is the body
    Release = 7,      // the sender has dropped code references that it was sent
    Welcome = 8,      // answers HelloControl: what is sent from now on will be read
    Descriptors = 9,  // the next call on this connection brings some, its reply may; answered with a reply
};

/**
 * Head of every message, in the machine's byte order: both ends run on one machine. After it come, without
 * gaps, the pieces, the references of those that are objects, the scalars (padded to 8 bytes) and the buffers
 * (each padded to 8 bytes). On the wire, a piece's place is 0.
 */
struct MessageHeader {
    uint32_t magic;
    uint32_t totalBytes;  // this header included; a multiple of 8
    MessageKind kind;
    uint16_t descriptorCount;  // which come with the first byte
    uint32_t code;             // method of a call
    uint64_t object;           // the called object and its nonce
    uint64_t nonce;
    int32_t status;        // of a reply: what the call itself came to; the rest is empty unless OK
    uint32_t scalarBytes;  // without the padding
    uint32_t pieceCount;
    uint32_t objectCount;  // pieces that are objects and not null
};
static_assert(sizeof(MessageHeader) == 48);

constexpr uint32_t kMessageMagic = 0x325a5448;  // "HTZ2"

/**
 * Longest message. What a transaction may hold (kMaxTransactionBytes) takes no more than this here, unless it
 * has thousands of objects: each takes 48 bytes here, and 32 of a transaction. The sender refuses what is
 * longer; a message that announces more costs its sender the connection.
 */
constexpr size_t kMaxMessageBytes = kMaxTransactionBytes + sizeof(MessageHeader) + sizeof(ObjectReference);

/** Scalars and buffers begin at multiples of this. */
constexpr size_t kAlignment = 8;

constexpr size_t padded(size_t size) {
    return (size + kAlignment - 1) & ~(kAlignment - 1);
}

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
using Block = std::unique_ptr<uint8_t, FreeDeleter>;

/** Memory for a message, aligned for any scalar; null when there is none. */
Block allocateBlock(size_t size);

/** A block and how much it holds. */
struct SizedBlock {
    SizedBlock() = default;
    SizedBlock(Block memory, size_t size) : block(std::move(memory)), capacity(size) {}
    SizedBlock(SizedBlock&& other) noexcept { *this = std::move(other); }
    SizedBlock& operator=(SizedBlock&& other) noexcept {
        std::swap(block, other.block);
        std::swap(capacity, other.capacity);
        return *this;
    }

    Block block;
    size_t capacity = 0;
};

/**
 * Where to receive a reply of unknown length: the block of this thread's last reply if it was returned, else
 * a new one of kSmallBlockBytes. A caller that reads results of one size in a loop so gets each in one
 * receive, into memory that is there already. A thread keeps one block of at most kMaxSpareBytes.
 */
SizedBlock takeSpareBlock();
void returnSpareBlock(SizedBlock block);
constexpr size_t kMaxSpareBytes = 160 * 1024;

/**
 * Checks that a message has brought as many descriptors as it says.
 *
 * @param came null where none are looked for
 * @param rule set to the one that is broken, else to null
 * @return OK; -EMFILE when this process has no room for them
 */
status_t checkDescriptors(const MessageHeader& header, const Descriptors* came, const char** rule);

/** Looks into a message whose lengths have been checked. */
class Message {
  public:
    explicit Message(uint8_t* bytes) : mBytes(bytes) {}

    const MessageHeader& header() const { return *reinterpret_cast<const MessageHeader*>(mBytes); }
    ParcelPiece* pieces() const { return reinterpret_cast<ParcelPiece*>(mBytes + sizeof(MessageHeader)); }
    /** Of the objects, in the order of their pieces; 8-aligned. */
    const ObjectReference* references() const {
        return reinterpret_cast<const ObjectReference*>(mBytes + referencesAt());
    }
    const uint8_t* scalars() const {
        return mBytes + referencesAt() + header().objectCount * sizeof(ObjectReference);
    }
    /** For a parcel that reads it; the caller adds who keeps it. */
    ReceivedParcel received() const {
        ReceivedParcel all;
        all.scalars = scalars();
        all.scalarBytes = header().scalarBytes;
        all.pieces = pieces();
        all.pieceCount = header().pieceCount;
        all.base = mBytes;
        return all;
    }

    /**
     * Checks the lengths of a head before anything is allocated for it.
     *
     * @return null, or the rule that is broken
     */
    static const char* checkHeader(const MessageHeader& header);

    /**
     * Checks a whole message of header.totalBytes bytes, whose head checkHeader() has accepted, and notes in
     * each piece where it lies.
     *
     * @return null, or the rule that is broken
     */
    static const char* check(uint8_t* bytes);

    /** Writes the numbers of the descriptors that came with a checked message into its native handles. */
    void placeDescriptors(const Descriptors& descriptors);

  private:
    size_t referencesAt() const { return sizeof(MessageHeader) + header().pieceCount * sizeof(ParcelPiece); }

    uint8_t* mBytes;
};

}  // namespace android::hardware
