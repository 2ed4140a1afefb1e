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
        // A parent comes before its children, so that whatever points was checked before.
        if (piece.parent == kNoParent) {
            if (piece.parentOffset != 0) {
                return "a buffer without a parent has no place in it";
            }
        } else if (piece.parent >= i || pieces[piece.parent].parent == kIsObject ||
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
    if (buffer != header.totalBytes) {
        return "a message ends with its last buffer";
    }
    return nullptr;
}

}  // namespace android::hardware
