#include "platform/kernel/Transaction.h"

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "platform/binding/Descriptors.h"

namespace android::hardware {

namespace {

constexpr size_t padded8(size_t size) {
    return (size + 7) & ~size_t{7};
}

/** The objects of one received message, which hold them until somebody reads them or the parcel ends. */
class ReceivedObjects final : public ObjectSource {
  public:
    void add(sp<IBinder> object) { mObjects.push_back(std::move(object)); }
    size_t size() const { return mObjects.size(); }

    status_t takeObject(const uint8_t* form, sp<IBinder>* object) override {
        uint32_t index;
        std::memcpy(&index, form, sizeof(index));
        *object = std::move(mObjects[index]);
        return OK;
    }
    void dropObject(const uint8_t*) override {}
    size_t nullBytes(const uint8_t* scalars, size_t left) const override {
        const flat_binder_object null = nullForm();
        return left >= sizeof(null) && std::memcmp(scalars, &null, sizeof(null)) == 0 ? sizeof(null) : 0;
    }

  private:
    std::vector<sp<IBinder>> mObjects;
};

/** For messages without any; so that reading a null is known there, too. */
const std::shared_ptr<ObjectSource>& noObjects() {
    static const auto* const none = new std::shared_ptr<ObjectSource>(std::make_shared<ReceivedObjects>());
    return *none;
}

/** Takes a received message apart: checks what is in it, and says how much memory a copy takes. */
class Reader {
  public:
    Reader(const binder_transaction_data& received, const ReceivedMemory& memory)
        : mMemory(memory),
          mData(received.data.ptr.buffer),
          mDataBytes(received.data_size),
          mPlaces(received.data.ptr.offsets),
          mPlaceBytes(received.offsets_size) {}

    /** Null, or the rule that the message breaks. */
    const char* checkExtent() {
        if (!lies(mData, mDataBytes) || mData % 8 != 0) {
            return "the data lie in the driver's memory";
        }
        if (mPlaceBytes % sizeof(binder_size_t) != 0 || !lies(mPlaces, mPlaceBytes) ||
            (mPlaceBytes > 0 && mPlaces != mData + padded8(mDataBytes))) {
            return "the table follows the data";
        }
        mNextBuffer = mData + padded8(mDataBytes) + mPlaceBytes;
        return nullptr;
    }

    size_t count() const { return mPlaceBytes / sizeof(binder_size_t); }
    size_t dataBytes() const { return mDataBytes; }
    const uint8_t* data() const { return at(mData); }

    /**
     * Checks the next form of the table, and lays its copy out.
     *
     * @param pieces of the forms before it
     * @param copyAt where its copy is to lie; moved behind it
     */
    const char* next(const ParcelPiece* pieces, ParcelPiece* piece, size_t* copyAt) {
        uint32_t type = 0;
        const char* rule = find(&type);
        if (rule != nullptr) {
            return rule;
        }
        if (type == BINDER_TYPE_FDA) {
            rule = descriptors(pieces, piece);
            ++mIndex;
            return rule;
        }
        if (type == BINDER_TYPE_PTR) {
            rule = buffer(pieces, piece);
        } else if (type == BINDER_TYPE_BINDER || type == BINDER_TYPE_HANDLE) {
            *piece = {1, kIsObject, 0, 0};
            mForm = {};
            std::memcpy(&mForm, at(mData + mFormAt), sizeof(mForm));
        } else {
            rule = "a message holds buffers, their descriptors and strong references, nothing else";
        }
        if (rule == nullptr) {
            piece->place = static_cast<uint32_t>(*copyAt);
            *copyAt += padded8(piece->parent == kIsObject ? sizeof(uint32_t) : piece->size);
        }
        ++mIndex;
        return rule;
    }

    /** Closes the descriptors among the forms, instead of next(). */
    void closeDescriptors() {
        uint32_t type = 0;
        for (; mIndex < count() && find(&type) == nullptr; ++mIndex) {
            if (type == BINDER_TYPE_FD) {
                binder_fd_object form;
                std::memcpy(&form, at(mData + mFormAt), sizeof(form));
                close(static_cast<int>(form.fd));
            }
        }
    }

    // Of the last form:

    /** Scalars before it. */
    size_t scalarsBefore() const { return mScalarBytes; }
    size_t formAt() const { return mFormAt; }
    size_t formEnd() const { return mFormEnd; }
    /** When it is an object. */
    const flat_binder_object& object() const { return mForm; }
    /** When it is a buffer. */
    const uint8_t* bufferBytes() const { return at(mBuffer); }

  private:
    bool lies(binder_uintptr_t address, size_t size) const {
        const auto begin = reinterpret_cast<uintptr_t>(mMemory.begin);
        return address >= begin && address - begin <= mMemory.size &&
               size <= mMemory.size - (address - begin);
    }
    const uint8_t* at(binder_uintptr_t address) const {
        return mMemory.begin + (address - reinterpret_cast<uintptr_t>(mMemory.begin));
    }

    /** Where the next form lies. */
    const char* find(uint32_t* type) {
        binder_size_t place;
        std::memcpy(&place, at(mPlaces + mIndex * sizeof(place)), sizeof(place));
        if (place % 4 != 0 || place < mFormEnd || place > mDataBytes || mDataBytes - place < sizeof(*type)) {
            return "the table names forms in the data, in their order";
        }
        std::memcpy(type, at(mData + place), sizeof(*type));
        const size_t size = *type == BINDER_TYPE_PTR   ? sizeof(binder_buffer_object)
                            : *type == BINDER_TYPE_FDA ? sizeof(binder_fd_array_object)
                                                       : sizeof(flat_binder_object);
        if (mDataBytes - place < size) {
            return "a form lies within the data";
        }
        mFormAt = place;
        mScalarBytes += place - mFormEnd;
        mFormEnd = place + size;
        return nullptr;
    }

    const char* descriptors(const ParcelPiece* pieces, ParcelPiece* piece) {
        binder_fd_array_object form;
        std::memcpy(&form, at(mData + mFormAt), sizeof(form));
        if (mIndex == 0 || form.parent != mIndex - 1 || !isBuffer(pieces[form.parent]) ||
            form.parent_offset != sizeof(native_handle_t) || form.num_fds > kMaxDescriptors ||
            pieces[form.parent].size < sizeof(native_handle_t) + form.num_fds * sizeof(int)) {
            return "descriptors lie in the native handle before them";
        }
        mDescriptors += form.num_fds;
        if (mDescriptors > kMaxDescriptors) {
            return "a message brings few descriptors";
        }
        *piece = {static_cast<uint32_t>(form.num_fds), kIsDescriptors, 0,
                  pieces[form.parent].place + static_cast<uint32_t>(sizeof(native_handle_t))};
        return nullptr;
    }

    const char* buffer(const ParcelPiece* pieces, ParcelPiece* piece) {
        binder_buffer_object form;
        std::memcpy(&form, at(mData + mFormAt), sizeof(form));
        // The driver puts them one behind the other: so none lies in another, and together they are bounded.
        if (form.buffer != mNextBuffer || !lies(form.buffer, form.length)) {
            return "a buffer lies behind the one before it";
        }
        mBuffer = form.buffer;
        mNextBuffer += padded8(form.length);
        *piece = {static_cast<uint32_t>(form.length), kNoParent, 0, 0};
        if (form.flags == 0) {
            return nullptr;
        }
        if (form.flags != BINDER_BUFFER_FLAG_HAS_PARENT) {
            return "a buffer has a parent or none";
        }
        if (form.parent >= mIndex || !isBuffer(pieces[form.parent]) ||
            pieces[form.parent].size < sizeof(void*) ||
            form.parent_offset > pieces[form.parent].size - sizeof(void*) ||
            form.parent_offset % sizeof(void*) != 0) {
            return "a buffer's parent is an earlier buffer with room for the pointer";
        }
        piece->parent = static_cast<uint32_t>(form.parent);
        piece->parentOffset = static_cast<uint32_t>(form.parent_offset);
        return nullptr;
    }

    const ReceivedMemory mMemory;
    const binder_uintptr_t mData;
    const size_t mDataBytes;
    const binder_uintptr_t mPlaces;
    const size_t mPlaceBytes;

    size_t mIndex = 0;
    binder_uintptr_t mNextBuffer = 0;
    size_t mFormAt = 0;
    size_t mFormEnd = 0;
    size_t mScalarBytes = 0;
    flat_binder_object mForm{};
    binder_uintptr_t mBuffer = 0;
    size_t mDescriptors = 0;
};

/** Replaces descriptors by others that lead to the same. */
status_t copyDescriptors(uint8_t* place, size_t count, Descriptors* owner) {
    for (; count > 0; --count, place += sizeof(int)) {
        int fd;
        std::memcpy(&fd, place, sizeof(fd));
        fd = fcntl(fd, F_DUPFD_CLOEXEC, 0);
        if (fd < 0) {
            return -errno;
        }
        owner->add(&fd, 1);
        std::memcpy(place, &fd, sizeof(fd));
    }
    return OK;
}

/** readTransaction(), which drops what this refuses. */
status_t copyTransaction(const binder_transaction_data& received, const ReceivedMemory& memory,
                         ObjectTranslator* objects, Parcel* parcel, const char** rule) {
    Reader reader(received, memory);
    *rule = reader.checkExtent();
    if (*rule != nullptr) {
        return BAD_VALUE;
    }
    // The copy: pieces, scalars before each, scalars, then what the pieces are, each padded to 8 bytes. Forms
    // do not overlap, nor do buffers: so it is not much longer than the message.
    const size_t count = reader.count();
    if (count > reader.dataBytes() / sizeof(flat_binder_object)) {
        *rule = "the table names forms in the data, in their order";
        return BAD_VALUE;
    }
    const size_t beforeAt = count * sizeof(ParcelPiece);
    const size_t scalarsAt = beforeAt + padded8(count * sizeof(uint32_t));
    const size_t piecesAt = scalarsAt + padded8(reader.dataBytes());
    size_t end = piecesAt;
    std::unique_ptr<uint8_t, decltype(&std::free)> copy(nullptr, std::free);
    {
        // First only the pieces, as their sizes decide on the memory for all.
        InlineVector<ParcelPiece, 32> checked;
        Reader sizes(reader);
        for (size_t i = 0; i < count; ++i) {
            ParcelPiece* const piece = checked.grow(1);
            if (piece == nullptr) {
                return NO_MEMORY;
            }
            *rule = sizes.next(checked.data(), piece, &end);
            if (*rule != nullptr) {
                return BAD_VALUE;
            }
        }
        copy.reset(static_cast<uint8_t*>(std::malloc(end > 0 ? end : 1)));
        if (copy == nullptr) {
            return NO_MEMORY;
        }
        if (count > 0) {
            std::memcpy(copy.get(), checked.data(), beforeAt);
        }
    }
    auto* const pieces = reinterpret_cast<ParcelPiece*>(copy.get());
    auto* const before = reinterpret_cast<uint32_t*>(copy.get() + beforeAt);
    uint8_t* scalars = copy.get() + scalarsAt;
    std::shared_ptr<ReceivedObjects> taken;
    ReceivedParcel result;
    std::unique_ptr<Descriptors> descriptors;
    size_t from = 0;
    size_t ignored = 0;
    try {
        for (size_t i = 0; i < count; ++i) {
            ParcelPiece piece;
            reader.next(pieces, &piece, &ignored);
            before[i] = static_cast<uint32_t>(reader.scalarsBefore());
            std::memcpy(scalars, reader.data() + from, reader.formAt() - from);
            scalars += reader.formAt() - from;
            from = reader.formEnd();
            uint8_t* const to = copy.get() + pieces[i].place;
            if (pieces[i].parent == kIsDescriptors) {
                if (descriptors == nullptr) {
                    descriptors = std::make_unique<Descriptors>();
                }
                const status_t status = copyDescriptors(to, pieces[i].size, descriptors.get());
                if (status != OK) {
                    return status;
                }
                continue;
            }
            if (pieces[i].parent != kIsObject) {
                if (pieces[i].size > 0) {
                    std::memcpy(to, reader.bufferBytes(), pieces[i].size);
                }
                continue;
            }
            if (taken == nullptr) {
                taken = std::make_shared<ReceivedObjects>();
            }
            sp<IBinder> object;
            const status_t status = objects->resolve(reader.object(), &object);
            if (status != OK) {
                *rule = "a reference is to an object";
                return status;
            }
            const auto index = static_cast<uint32_t>(taken->size());
            std::memcpy(to, &index, sizeof(index));
            taken->add(std::move(object));
        }
        result.objects = taken != nullptr ? std::shared_ptr<ObjectSource>(std::move(taken)) : noObjects();
    } catch (const std::bad_alloc&) {
        return NO_MEMORY;
    }
    std::memcpy(scalars, reader.data() + from, reader.dataBytes() - from);
    scalars += reader.dataBytes() - from;

    result.scalars = copy.get() + scalarsAt;
    result.scalarBytes = static_cast<size_t>(scalars - result.scalars);
    result.pieces = pieces;
    result.pieceCount = count;
    result.scalarsBefore = before;
    result.base = copy.get();
    result.memory =
            ParcelMemory(copy.release(), end, [](void* block, size_t /* size */) { std::free(block); });
    result.descriptors = keeperOf(std::move(descriptors));
    parcel->receive(std::move(result));
    return OK;
}

}  // namespace

status_t readTransaction(const binder_transaction_data& received, const ReceivedMemory& memory,
                         ObjectTranslator* objects, Parcel* parcel, const char** rule) {
    const status_t status = copyTransaction(received, memory, objects, parcel, rule);
    if (status != OK) {
        dropTransaction(received, memory);
    }
    return status;
}

void dropTransaction(const binder_transaction_data& received, const ReceivedMemory& memory) {
    Reader reader(received, memory);
    if (reader.checkExtent() == nullptr) {
        reader.closeDescriptors();
    }
}

}  // namespace android::hardware
