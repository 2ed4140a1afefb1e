#include "platform/src/Encoder.h"

#include <cstring>

namespace android::hardware {

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
    const auto& buffers = parcel.buffers();
    mStaging.clear();
    mVectors.clear();
    if (parcel.error() != OK) {
        return parcel.error();
    }

    // A record that points to others is copied whatever its size, since its pointers are blanked.
    InlineVector<bool, 64> copied;
    if (copied.grow(buffers.size()) == nullptr) {
        return NO_MEMORY;
    }
    for (size_t i = 0; i < buffers.size(); ++i) {
        const BufferEntry& entry = buffers[i].entry;
        copied[i] = entry.size <= kCopyBytes;
        if (entry.parent != kNoParent) {
            copied[entry.parent] = true;
        }
    }

    const size_t scalarsAt = sizeof(head) + buffers.size() * sizeof(BufferEntry);
    size_t staged = scalarsAt + padded(scalars.size());
    size_t total = staged;
    size_t gathered = 0;
    for (size_t i = 0; i < buffers.size(); ++i) {
        const size_t size = buffers[i].entry.size;
        total += padded(size);
        staged += copied[i] ? padded(size) : padded(size) - size;
        gathered += copied[i] ? 0 : 1;
        if (total > kMaxMessageBytes) {
            return FAILED_TRANSACTION;
        }
    }
    if (total > kMaxMessageBytes) {
        return FAILED_TRANSACTION;
    }

    head.magic = kMessageMagic;
    head.totalBytes = static_cast<uint32_t>(total);
    head.scalarBytes = static_cast<uint32_t>(scalars.size());
    head.bufferCount = static_cast<uint32_t>(buffers.size());
    head.reserved = 0;
    // The staging area has its final size from here on: the vectors point into it.
    uint8_t* stage = mStaging.grow(staged);
    if (stage == nullptr || mVectors.grow(2 * gathered + 1) == nullptr) {
        return NO_MEMORY;
    }
    const size_t maxVectors = mVectors.size();
    std::memcpy(stage, &head, sizeof(head));
    if (!scalars.empty()) {
        std::memcpy(stage + scalarsAt, scalars.data(), scalars.size());
    }
    std::memset(stage + scalarsAt + scalars.size(), 0, padded(scalars.size()) - scalars.size());

    InlineVector<uint32_t, 64> places;  // where in the staging area a copied buffer lies
    if (places.grow(buffers.size()) == nullptr) {
        return NO_MEMORY;
    }
    uint8_t* end = stage + scalarsAt + padded(scalars.size());
    uint8_t* run = stage;  // start of the staged bytes that no vector covers yet
    size_t vectors = 0;
    for (size_t i = 0; i < buffers.size(); ++i) {
        const MessageBuffer& buffer = buffers[i];
        const size_t size = buffer.entry.size;
        std::memcpy(stage + sizeof(head) + i * sizeof(BufferEntry), &buffer.entry, sizeof(BufferEntry));
        if (copied[i]) {
            places[i] = static_cast<uint32_t>(end - stage);
            if (size > 0) {
                std::memcpy(end, buffer.data, size);
            }
            end += size;
        } else {
            mVectors[vectors++] = {run, static_cast<size_t>(end - run)};
            mVectors[vectors++] = {const_cast<void*>(buffer.data), size};
            run = end;
        }
        std::memset(end, 0, padded(size) - size);
        end += padded(size) - size;
        if (buffer.entry.parent != kNoParent) {
            std::memset(stage + places[buffer.entry.parent] + buffer.entry.parentOffset, 0, sizeof(void*));
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
