#pragma once

#include <utils/Errors.h>
#include <utils/StrongPointer.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <utility>

namespace android::hardware {

class IBinder;

/**
 * Largest message, header and buffers together: the device's limit for one transaction. A longer one is
 * refused where it is written; one that announces more than this costs its sender the connection.
 */
constexpr size_t kMaxMessageBytes = 1024 * 1024;

/** What a connection's first read is offered, and the size of a block that most messages fit in. */
constexpr size_t kSmallBlockBytes = 4096;

/** Names one process: the random name of the socket that it listens on. All zero is nobody. */
using Endpoint = std::array<uint8_t, 16>;

/** Names one object of one process. The nonce is random: who was not given it can not make it up. */
struct ObjectReference {
    Endpoint endpoint;
    uint64_t object;
    uint64_t nonce;
};

enum class MessageKind : uint32_t {
    HelloCall = 1,  // first on a connection that carries calls; object and nonce hold the sender's endpoint
    HelloControl = 2,  // first on a connection that carries the kinds from OneWay on
    Call = 3,
    Reply = 4,
    OneWay = 5,
    Acquire = 6,  // the sender got a reference to the object from a third process
    Release = 7,  // the sender has dropped code references that it was sent
};

/**
 * Head of every message, in the machine's byte order: both ends run on one machine. After it come, without
 * gaps, the buffer entries, the scalars (padded to 8 bytes) and the buffers (each padded to 8 bytes).
 */
struct MessageHeader {
    uint32_t magic;
    uint32_t totalBytes;  // this header included; a multiple of 8
    MessageKind kind;
    uint32_t code;    // method of a call
    uint64_t object;  // the called object and its nonce
    uint64_t nonce;
    int32_t status;        // of a reply: what the call itself came to; the rest is empty unless OK
    uint32_t scalarBytes;  // without the padding
    uint32_t bufferCount;
    uint32_t reserved;
};
static_assert(sizeof(MessageHeader) == 48);

constexpr uint32_t kMessageMagic = 0x315a5448;  // "HTZ1"
constexpr uint32_t kNoParent = UINT32_MAX;

struct BufferEntry {
    uint32_t size;
    uint32_t parent;        // number of the buffer that points to this one, or kNoParent
    uint32_t parentOffset;  // where in it the pointer lies
    uint32_t offset;        // from the start of the block; filled in by the receiver, zero on the wire
};
static_assert(sizeof(BufferEntry) == 16);

/** How an object lies among the scalars. */
struct ObjectSlot {
    uint64_t present;  // 0: null, the reference is all zero
    ObjectReference reference;
};
static_assert(sizeof(ObjectSlot) == 40);

/** Scalars and buffers begin at multiples of this. */
constexpr size_t kAlignment = 8;

constexpr size_t padded(size_t size) {
    return (size + kAlignment - 1) & ~(kAlignment - 1);
}

/** An object that waits for being sent, and where its slot lies among the scalars. */
struct OutgoingObject {
    size_t scalarOffset;
    sp<IBinder> object;
};

/** Makes objects of received references. */
class ObjectResolver {
  public:
    /** @return DEAD_OBJECT when the object's process can not be reached. */
    virtual status_t resolve(const ObjectReference& reference, sp<IBinder>* object) = 0;

    /** The message whose reader it was given to is read: no reference of it will be asked for any more. */
    virtual void messageRead() {}

  protected:
    ~ObjectResolver() = default;
};

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
using Block = std::unique_ptr<uint8_t, FreeDeleter>;

/** Memory for a message, aligned for any scalar; null when there is none. */
Block allocateBlock(size_t size);

/** A block and how much it holds. */
struct SizedBlock {
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
 * A received message inside a block whose lengths have been checked. It owns the block or looks into one that
 * outlives it.
 */
class Message {
  public:
    Message() = default;
    /** Looks into bytes that check() has accepted. */
    explicit Message(uint8_t* bytes) : mBytes(bytes) {}
    explicit Message(Block block) : mBlock{std::move(block), 0}, mBytes(mBlock.block.get()) {}
    /** The block goes back to the thread that ends the message. */
    explicit Message(SizedBlock block) : mBlock(std::move(block)), mBytes(mBlock.block.get()) {}
    Message(Message&& other) noexcept { *this = std::move(other); }
    Message& operator=(Message&& other) noexcept {
        std::swap(mBlock, other.mBlock);
        std::swap(mBytes, other.mBytes);
        return *this;
    }
    ~Message() {
        if (mBlock.capacity > 0) {
            returnSpareBlock(std::move(mBlock));
        }
    }

    bool empty() const { return mBytes == nullptr; }
    const MessageHeader& header() const { return *reinterpret_cast<const MessageHeader*>(mBytes); }
    BufferEntry* entries() { return reinterpret_cast<BufferEntry*>(mBytes + sizeof(MessageHeader)); }
    uint8_t* scalars() { return mBytes + sizeof(MessageHeader) + header().bufferCount * sizeof(BufferEntry); }
    uint8_t* bytes() { return mBytes; }

    /**
     * Checks the lengths of a head before anything is allocated for it.
     *
     * @return null, or the rule that is broken
     */
    static const char* checkHeader(const MessageHeader& header);

    /**
     * Checks a whole message of header.totalBytes bytes, whose head checkHeader() has accepted, and notes in
     * each entry where its buffer lies.
     *
     * @return null, or the rule that is broken
     */
    static const char* check(uint8_t* bytes);

  private:
    SizedBlock mBlock;
    uint8_t* mBytes = nullptr;
};

}  // namespace android::hardware
