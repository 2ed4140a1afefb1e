#include "platform/socket/MessageReader.h"

#include <algorithm>
#include <cstring>

namespace android::hardware {

SkippedMessage::SkippedMessage(const MessageHeader& head)
    : mHead(head),
      mReferencesAt(sizeof(head) + head.pieceCount * sizeof(ParcelPiece)),
      mReferencesEnd(mReferencesAt + head.objectCount * sizeof(ObjectReference)) {}

void SkippedMessage::take(const uint8_t* bytes, size_t size, ObjectSource& objects) {
    const size_t end = mAt + size;
    while (mAt < end) {
        if (mAt < mReferencesAt || mAt >= mReferencesEnd) {
            const size_t next = mAt < mReferencesAt ? std::min(end, mReferencesAt) : end;
            bytes += next - mAt;
            mAt = next;
            continue;
        }
        const size_t within = (mAt - mReferencesAt) % sizeof(mReference);
        const size_t part = std::min(sizeof(mReference) - within, end - mAt);
        std::memcpy(mReference + within, bytes, part);
        bytes += part;
        mAt += part;
        if (within + part == sizeof(mReference)) {
            objects.dropObject(mReference);
        }
    }
}

MessageReader::Found MessageReader::next(MessageHeader* head, uint8_t** bytes, const char** rule,
                                         ObjectSource& objects) {
    if (mSkipped.has_value()) {
        if (mSkipped->left() > 0) {
            return Found::Nothing;
        }
        *head = mSkipped->head();
        mSkipped.reset();
        return Found::NoMemory;
    }
    if (mLong != nullptr) {
        if (mLongGiven) {
            mLong.reset();
            mLongGiven = false;
        } else if (mLongHave < mLongTotal) {
            return Found::Nothing;
        } else {
            std::memcpy(head, mLong.get(), sizeof(*head));
            *bytes = mLong.get();
            mLongGiven = true;
            *rule = Message::check(*bytes);
            return *rule == nullptr ? Found::Message : Found::BrokenRule;
        }
    }
    const size_t have = mHave - mStart;
    if (have < sizeof(*head)) {
        return Found::Nothing;
    }
    uint8_t* const first = mBlock.get() + mStart;
    std::memcpy(head, first, sizeof(*head));
    *rule = Message::checkHeader(*head);
    if (*rule != nullptr) {
        return Found::BrokenRule;
    }
    if (have >= head->totalBytes) {
        mStart += head->totalBytes;
        *bytes = first;
        *rule = Message::check(first);
        return *rule == nullptr ? Found::Message : Found::BrokenRule;
    }
    if (head->totalBytes > mCapacity) {
        mLong = allocateBlock(head->totalBytes);
        mLongTotal = head->totalBytes;
        mStart = mHave = 0;
        if (mLong != nullptr) {
            std::memcpy(mLong.get(), first, have);
            mLongHave = have;
        } else {
            mSkipped.emplace(*head);
            mSkipped->take(first + sizeof(*head), have - sizeof(*head), objects);
        }
    }
    return Found::Nothing;
}

uint8_t* MessageReader::space(size_t* size) {
    if (mSkipped.has_value()) {
        *size = std::min(mSkipped->left(), mCapacity);
        return mBlock.get();
    }
    if (mLong != nullptr && !mLongGiven) {
        *size = mLongTotal - mLongHave;
        return mLong.get() + mLongHave;
    }
    if (mStart > 0) {
        mHave -= mStart;
        std::memmove(mBlock.get(), mBlock.get() + mStart, mHave);
        mStart = 0;
    }
    *size = mCapacity - mHave;
    return mBlock.get() + mHave;
}

void MessageReader::filled(size_t bytes, ObjectSource& objects) {
    if (mSkipped.has_value()) {
        mSkipped->take(mBlock.get(), bytes, objects);
    } else if (mLong != nullptr && !mLongGiven) {
        mLongHave += bytes;
    } else {
        mHave += bytes;
    }
}

}  // namespace android::hardware
