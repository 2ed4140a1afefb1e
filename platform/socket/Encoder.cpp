#include "platform/socket/Encoder.h"

#include <fcntl.h>

#include <cstring>

namespace android::hardware {

namespace {

/** Copies and pads with zeros. Nothing is where there is nothing: from may be null then. */
inline void copyPadded(uint8_t* to, const void* from, size_t size) {
    if (size > 0) {
        std::memset(to + padded(size) - kAlignment, 0, kAlignment);
        std::memcpy(to, from, size);
    }
}

}  // namespace

void Encoder::encode(MessageHeader head, const Endpoint* body) {
    const size_t bodyBytes = body == nullptr ? 0 : body->size();
    head.magic = kMessageMagic;
    head.totalBytes = static_cast<uint32_t>(sizeof(head) + bodyBytes);
    head.scalarBytes = static_cast<uint32_t>(bodyBytes);
    head.pieceCount = 0;
    head.objectCount = 0;
    mStaging.clear();
    mVectors.clear();
    mDescriptors.clear();
    // All fits in the inline storage.
    uint8_t* const stage = mStaging.grow(head.totalBytes);
    std::memcpy(stage, &head, sizeof(head));
    if (body != nullptr) {
        std::memcpy(stage + sizeof(head), body->data(), bodyBytes);
    }
    mBytes = head.totalBytes;
    mVectors.push({stage, mBytes});
}

status_t Encoder::encode(MessageHeader head, const Parcel& parcel, ObjectExporter* exporter, size_t most) {
    const auto& scalars = parcel.scalars();
    const auto& pieces = parcel.pieces();
    const auto& objects = parcel.objects();
    mStaging.clear();
    mVectors.clear();
    mDescriptors.clear();
    if (parcel.error() != OK) {
        return parcel.error();
    }
    if (parcel.transactionBytes() > most) {
        return FAILED_TRANSACTION;
    }

    if (parcel.descriptorCount() > kMaxDescriptors) {
        return FAILED_TRANSACTION;
    }

    const size_t referencesAt = sizeof(head) + pieces.size() * sizeof(ParcelPiece);
    const size_t scalarsAt = referencesAt + objects.size() * sizeof(ObjectReference);
    const size_t buffersAt = scalarsAt + padded(scalars.size());
    const size_t total = buffersAt + parcel.bufferBytes();
    if (total > kMaxMessageBytes) {
        return FAILED_TRANSACTION;
    }

    // Most messages are copied whole. Else a record that points to others is copied whatever its size, since
    // its pointers are blanked.
    const bool allCopied = parcel.longestBuffer() <= kCopyBytes;
    InlineVector<bool, 64> copied;
    size_t staged = total;
    size_t gathered = 0;
    if (!allCopied) {
        if (copied.grow(pieces.size()) == nullptr) {
            return NO_MEMORY;
        }
        for (size_t i = 0; i < pieces.size(); ++i) {
            copied[i] = !isBuffer(pieces[i]) || pieces[i].size <= kCopyBytes;
            if (pieces[i].parent < i) {
                copied[pieces[i].parent] = true;
            }
        }
        for (size_t i = 0; i < pieces.size(); ++i) {
            if (!copied[i]) {
                staged -= pieces[i].size;
                ++gathered;
            }
        }
    }

    head.magic = kMessageMagic;
    head.totalBytes = static_cast<uint32_t>(total);
    head.scalarBytes = static_cast<uint32_t>(scalars.size());
    head.pieceCount = static_cast<uint32_t>(pieces.size());
    head.objectCount = static_cast<uint32_t>(objects.size());
    head.descriptorCount = static_cast<uint16_t>(parcel.descriptorCount());
    // The staging area has its final size from here on: the vectors point into it.
    uint8_t* const stage = mStaging.grow(staged);
    InlineVector<uint32_t, 64> places;  // where in the staging area a copied buffer lies
    if (stage == nullptr || mVectors.grow(2 * gathered + 1) == nullptr ||
        places.grow(pieces.size()) == nullptr) {
        return NO_MEMORY;
    }
    const size_t maxVectors = mVectors.size();
    std::memcpy(stage, &head, sizeof(head));
    copyPadded(stage + scalarsAt, scalars.data(), scalars.size());

    uint8_t* table = stage + sizeof(head);
    uint8_t* end = stage + buffersAt;
    uint8_t* run = stage;  // start of the staged bytes that no vector covers yet
    size_t vectors = 0;
    for (size_t i = 0; i < pieces.size(); ++i) {
        const ParcelPiece& piece = pieces[i];
        const ParcelPiece sent{piece.size, piece.parent, piece.parentOffset, 0};
        std::memcpy(table, &sent, sizeof(sent));
        table += sizeof(sent);
        if (!isBuffer(piece)) {
            const auto* fds = static_cast<const int*>(parcel.memory()[i]);
            for (uint32_t k = 0; piece.parent == kIsDescriptors && k < piece.size; ++k) {
                if (fcntl(fds[k], F_GETFD) < 0) {
                    return BAD_VALUE;
                }
                mDescriptors.push(fds[k]);  // fits, as it was counted
            }
            continue;
        }
        const size_t size = piece.size;
        if (allCopied || copied[i]) {
            places[i] = static_cast<uint32_t>(end - stage);
            copyPadded(end, parcel.memory()[i], size);
            end += padded(size);
        } else {
            mVectors[vectors++] = {run, static_cast<size_t>(end - run)};
            mVectors[vectors++] = {const_cast<void*>(parcel.memory()[i]), size};
            run = end;
            std::memset(end, 0, padded(size) - size);
            end += padded(size) - size;
        }
        if (piece.parent != kNoParent) {
            std::memset(stage + places[piece.parent] + piece.parentOffset, 0, sizeof(void*));
        }
    }
    if (end != run) {
        mVectors[vectors++] = {run, static_cast<size_t>(end - run)};
    }
    mBytes = total;
    mVectors.shrink(maxVectors - vectors);

    for (size_t i = 0; i < objects.size(); ++i) {
        ObjectReference reference;
        const status_t status = exporter->exportObject(objects[i], &reference);
        if (status != OK) {
            return status;
        }
        std::memcpy(stage + referencesAt + i * sizeof(reference), &reference, sizeof(reference));
    }
    return OK;
}

}  // namespace android::hardware
