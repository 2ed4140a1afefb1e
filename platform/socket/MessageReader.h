#pragma once

#include <optional>

#include "platform/socket/Message.h"

namespace android::hardware {

/**
 * A message that there is no memory for, as it passes by: its references are given up, and nothing else of it
 * is kept. Made with its head, which has been checked.
 */
class SkippedMessage {
  public:
    explicit SkippedMessage(const MessageHeader& head);

    const MessageHeader& head() const { return mHead; }
    /** Bytes that are still to come. */
    size_t left() const { return mHead.totalBytes - mAt; }
    /** Takes the next bytes, at most those that are left. */
    void take(const uint8_t* bytes, size_t size, ObjectSource& objects);

  private:
    MessageHeader mHead;
    size_t mAt = sizeof(MessageHeader);
    size_t mReferencesAt;
    size_t mReferencesEnd;
    uint8_t mReference[sizeof(ObjectReference)];
};

/** Finds the messages in the bytes of a connection that may carry several in a row. One thread at a time. */
class MessageReader {
  public:
    /** @param blockBytes what a read is offered, unless a message is longer; a multiple of 8 */
    explicit MessageReader(size_t blockBytes) : mBlock(allocateBlock(blockBytes)), mCapacity(blockBytes) {}

    /** It can be used: there was memory for its block. */
    bool ok() const { return mBlock != nullptr; }

    enum class Found {
        Message,     // a whole one, checked, at *bytes, until the next call
        NoMemory,    // one passed for which there was no memory; *head is its head
        Nothing,     // more bytes are needed
        BrokenRule,  // *rule says which
    };
    /** @param objects gives up those of a message that there is no memory for */
    Found next(MessageHeader* head, uint8_t** bytes, const char** rule, ObjectSource& objects);

    /** Where the next bytes go; at least one fits. */
    uint8_t* space(size_t* size);
    void filled(size_t bytes, ObjectSource& objects);

    /** There are bytes beyond the message that was given out last. */
    bool hasMore() const { return mHave > mStart; }

  private:
    Block mBlock;
    const size_t mCapacity;
    size_t mStart = 0;  // of what has not been given out
    size_t mHave = 0;

    // A message that is longer than the block, if there is one.
    Block mLong;
    size_t mLongHave = 0;
    size_t mLongTotal = 0;
    bool mLongGiven = false;

    std::optional<SkippedMessage> mSkipped;  // while it passes by
};

}  // namespace android::hardware
