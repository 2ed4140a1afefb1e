#include "platform/socket/Encoder.h"

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

void Encoder::encode(MessageHeader head) {
    head.magic = kMessageMagic;
    head.totalBytes = sizeof(head);
    head.scalarBytes = 0;
    head.bufferCount = 0;
    head.reserved = 0;
    mStaging.clear();
    mVectors.clear();
    // Both fit in the inline storage.
    std::memcpy(mStaging.grow(sizeof(head)), &head, sizeof(head));
    mVectors.push({mStaging.data(), sizeof(head)});
    mBytes = sizeof(head);
}

status_t Encoder::encode(MessageHeader head, const Parcel& parcel, ObjectExporter* exporter) {
    const auto& scalars = parcel.scalars();
    const auto& entries = parcel.entries();
    mStaging.clear();
    mVectors.clear();
    if (parcel.error() != OK) {
        return parcel.error();
    }

    const size_t scalarsAt = sizeof(head) + entries.size() * sizeof(BufferEntry);
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
        if (copied.grow(entries.size()) == nullptr) {
            return NO_MEMORY;
        }
        for (size_t i = 0; i < entries.size(); ++i) {
            copied[i] = entries[i].size <= kCopyBytes;
            if (entries[i].parent != kNoParent) {
                copied[entries[i].parent] = true;
            }
        }
        for (size_t i = 0; i < entries.size(); ++i) {
            if (!copied[i]) {
                staged -= entries[i].size;
                ++gathered;
            }
        }
    }

    head.magic = kMessageMagic;
    head.totalBytes = static_cast<uint32_t>(total);
    head.scalarBytes = static_cast<uint32_t>(scalars.size());
    head.bufferCount = static_cast<uint32_t>(entries.size());
    head.reserved = 0;
    // The staging area has its final size from here on: the vectors point into it.
    uint8_t* const stage = mStaging.grow(staged);
    InlineVector<uint32_t, 64> places;  // where in the staging area a copied buffer lies
    if (stage == nullptr || mVectors.grow(2 * gathered + 1) == nullptr ||
        places.grow(entries.size()) == nullptr) {
        return NO_MEMORY;
    }
    const size_t maxVectors = mVectors.size();
    std::memcpy(stage, &head, sizeof(head));
    if (!entries.empty()) {
        std::memcpy(stage + sizeof(head), entries.data(), entries.size() * sizeof(BufferEntry));
    }
    copyPadded(stage + scalarsAt, scalars.data(), scalars.size());

    uint8_t* end = stage + buffersAt;
    uint8_t* run = stage;  // start of the staged bytes that no vector covers yet
    size_t vectors = 0;
    for (size_t i = 0; i < entries.size(); ++i) {
        const BufferEntry& entry = entries[i];
        const size_t size = entry.size;
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
        if (entry.parent != kNoParent) {
            std::memset(stage + places[entry.parent] + entry.parentOffset, 0, sizeof(void*));
        }
    }
    if (end != run) {
        mVectors[vectors++] = {run, static_cast<size_t>(end - run)};
    }
    mBytes = total;
    mVectors.shrink(maxVectors - vectors);

    for (const OutgoingObject& outgoing : parcel.objects()) {
        ObjectReference reference;
        const status_t status = exporter->exportObject(outgoing.object, &reference);
        if (status != OK) {
            return status;
        }
        std::memcpy(stage + scalarsAt + outgoing.scalarOffset + offsetof(ObjectSlot, reference), &reference,
                    sizeof(reference));
    }
    return OK;
}

}  // namespace android::hardware
