#include "platform/socket/Message.h"

#include <errno.h>

#include <cstring>

namespace android::hardware {

Block allocateBlock(size_t size) {
    return Block(static_cast<uint8_t*>(std::malloc(size)));
}

namespace {
thread_local SizedBlock tSpare;
}

SizedBlock takeSpareBlock() {
    if (tSpare.capacity > 0) {
        return std::move(tSpare);
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

status_t checkDescriptors(const MessageHeader& header, const Descriptors* came, const char** rule) {
    *rule = nullptr;
    const size_t count = came == nullptr ? 0 : came->size();
    if (came != nullptr && came->lacksSome() && count < header.descriptorCount) {
        return -EMFILE;
    }
    if (count != header.descriptorCount || (came != nullptr && (came->isOverfull() || came->lacksSome()))) {
        *rule = "a message brings as many descriptors as it says, where they were announced";
    }
    return OK;
}

const char* Message::checkHeader(const MessageHeader& header) {
    if (header.magic != kMessageMagic) {
        return "a message begins with the magic number";
    }
    if (header.totalBytes > kMaxMessageBytes) {
        return "a message carries one transaction at most";
    }
    if (header.totalBytes < sizeof(MessageHeader) || header.totalBytes % kAlignment != 0) {
        return "a message's length covers its header and is a multiple of 8";
    }
    if (header.descriptorCount > kMaxDescriptors) {
        return "a message brings few descriptors";
    }
    size_t left = header.totalBytes - sizeof(MessageHeader);
    if (header.pieceCount > left / sizeof(ParcelPiece)) {
        return "the table of pieces lies within the message";
    }
    left -= header.pieceCount * sizeof(ParcelPiece);
    if (header.objectCount > header.pieceCount || header.objectCount > left / sizeof(ObjectReference)) {
        return "the references lie within the message";
    }
    left -= header.objectCount * sizeof(ObjectReference);
    if (header.scalarBytes > left) {
        return "the scalars lie within the message";
    }
    return nullptr;
}

const char* Message::check(uint8_t* bytes) {
    const Message message(bytes);
    // A copy: as a reference it would be read anew after each piece that is written.
    const MessageHeader header = message.header();
    ParcelPiece* const pieces = message.pieces();
    size_t reference = message.referencesAt();
    const size_t scalars = reference + header.objectCount * sizeof(ObjectReference);
    size_t buffer = scalars + padded(header.scalarBytes);
    size_t descriptors = 0;
    for (uint32_t i = 0; i < header.pieceCount; ++i) {
        ParcelPiece& piece = pieces[i];
        if (piece.parent == kIsObject) {
            if (piece.size > 1 || piece.parentOffset != 0) {
                return "an object is one or null";
            }
            piece.place = static_cast<uint32_t>(reference);
            reference += piece.size * sizeof(ObjectReference);
            if (reference > scalars) {
                return "every object has its reference";
            }
            continue;
        }
        if (piece.parent == kIsDescriptors) {
            if (i == 0 || !isBuffer(pieces[i - 1]) || piece.parentOffset != 0 ||
                piece.size > kMaxDescriptors ||
                pieces[i - 1].size < sizeof(native_handle_t) + piece.size * sizeof(int)) {
                return "descriptors lie in the native handle before them";
            }
            piece.place = pieces[i - 1].place + static_cast<uint32_t>(sizeof(native_handle_t));
            descriptors += piece.size;
            continue;
        }
        // A parent comes before its children, so that whatever points was checked before.
        if (piece.parent == kNoParent) {
            if (piece.parentOffset != 0) {
                return "a buffer without a parent has no place in it";
            }
        } else if (piece.parent >= i || !isBuffer(pieces[piece.parent]) ||
                   pieces[piece.parent].size < sizeof(void*) ||
                   piece.parentOffset > pieces[piece.parent].size - sizeof(void*) ||
                   piece.parentOffset % kAlignment != 0) {
            return "a buffer's parent is an earlier buffer with room for the pointer";
        }
        if (buffer > header.totalBytes || piece.size > header.totalBytes - buffer) {
            return "a buffer lies within the message";
        }
        piece.place = static_cast<uint32_t>(buffer);
        buffer += padded(piece.size);
    }
    if (reference != scalars) {
        return "every reference has its object";
    }
    if (descriptors != header.descriptorCount) {
        return "every descriptor has its native handle";
    }
    if (buffer != header.totalBytes) {
        return "a message ends with its last buffer";
    }
    return nullptr;
}

void Message::placeDescriptors(const Descriptors& descriptors) {
    const int* next = descriptors.data();
    for (uint32_t i = 0; i < header().pieceCount; ++i) {
        const ParcelPiece& piece = pieces()[i];
        if (piece.parent == kIsDescriptors) {
            std::memcpy(mBytes + piece.place, next, piece.size * sizeof(int));
            next += piece.size;
        }
    }
}

}  // namespace android::hardware
