#include "platform/kernel/Transaction.h"

#include <fcntl.h>

#include <cstring>

#include "platform/binding/Descriptors.h"

namespace android::hardware {

uint8_t* WrittenTransaction::append(const void* bytes, size_t size) {
    uint8_t* const to = mData.grow(size);
    if (to != nullptr && size > 0) {
        std::memcpy(to, bytes, size);
    }
    return to;
}

status_t WrittenTransaction::write(const Parcel& parcel, ObjectTranslator* objects, size_t most) {
    const auto& scalars = parcel.scalars();
    const auto& pieces = parcel.pieces();
    if (parcel.error() != OK) {
        return parcel.error();
    }
    if (parcel.transactionBytes() > most || parcel.descriptorCount() > kMaxDescriptors) {
        return FAILED_TRANSACTION;
    }
    mBufferBytes = parcel.bufferBytes();
    InlineVector<uint32_t, 16> listed;  // of each piece: its place in the table
    size_t scalar = 0;
    size_t object = 0;
    for (size_t i = 0; i < pieces.size(); ++i) {
        const ParcelPiece& piece = pieces[i];
        bool written = append(scalars.data() + scalar, piece.place - scalar) != nullptr;
        scalar = piece.place;
        written = written && listed.push(static_cast<uint32_t>(mPlaces.size()));
        if (piece.parent == kIsObject && piece.size == 0) {
            const flat_binder_object form = nullForm();
            written = written && append(&form, sizeof(form)) != nullptr;
        } else {
            written = written && mPlaces.push(mData.size());
        }
        if (piece.parent == kIsObject && piece.size != 0) {
            flat_binder_object form{};
            const status_t status = objects->describe(parcel.objects()[object++], &form);
            if (status != OK) {
                return status;
            }
            written = written && append(&form, sizeof(form)) != nullptr;
        } else if (isBuffer(piece)) {
            binder_buffer_object form{};
            form.hdr.type = BINDER_TYPE_PTR;
            form.buffer = reinterpret_cast<uintptr_t>(parcel.memory()[i]);
            form.length = piece.size;
            if (piece.parent != kNoParent && written) {
                form.flags = BINDER_BUFFER_FLAG_HAS_PARENT;
                form.parent = listed[piece.parent];
                form.parent_offset = piece.parentOffset;
            }
            written = written && append(&form, sizeof(form)) != nullptr;
        } else if (piece.parent == kIsDescriptors && written) {
            const auto* const fds = static_cast<const int*>(parcel.memory()[i]);
            for (uint32_t k = 0; k < piece.size; ++k) {
                if (fcntl(fds[k], F_GETFD) < 0) {
                    return BAD_VALUE;
                }
            }
            binder_fd_array_object form{};
            form.hdr.type = BINDER_TYPE_FDA;
            form.num_fds = piece.size;
            form.parent = listed[i - 1];
            form.parent_offset = sizeof(native_handle_t);
            written = append(&form, sizeof(form)) != nullptr;
        }
        if (!written) {
            return NO_MEMORY;
        }
    }
    return append(scalars.data() + scalar, scalars.size() - scalar) != nullptr ? OK : NO_MEMORY;
}

void WrittenTransaction::fill(binder_transaction_data_sg* command) const {
    binder_transaction_data& data = command->transaction_data;
    data.data_size = mData.size();
    data.data.ptr.buffer = reinterpret_cast<uintptr_t>(mData.data());
    data.offsets_size = mPlaces.size() * sizeof(binder_size_t);
    data.data.ptr.offsets = reinterpret_cast<uintptr_t>(mPlaces.data());
    command->buffers_size = mBufferBytes;
}

}  // namespace android::hardware
