#pragma once

#include <hwbinder/InlineVector.h>
#include <hwbinder/Parcel.h>
#include <linux/android/binder.h>

#include "platform/kernel/Driver.h"

namespace android::hardware {

/** What stands for objects in messages: handles of other processes' objects, addresses of ours. */
class ObjectTranslator {
  public:
    /** Fills in the form of an object that is to be sent; it lives until the message is out. */
    virtual status_t describe(const sp<IBinder>& object, flat_binder_object* form) = 0;

    /**
     * The object that a received form stands for. The message holds it; what is returned holds it too, by the
     * time that this returns. May throw std::bad_alloc.
     */
    virtual status_t resolve(const flat_binder_object& form, sp<IBinder>* object) = 0;

  protected:
    ~ObjectTranslator() = default;
};

/** Null as an object is written among the scalars: it is in no table, so nobody makes an object of it. */
inline flat_binder_object nullForm() {
    flat_binder_object form{};
    form.hdr.type = BINDER_TYPE_BINDER;
    return form;
}

/**
 * A parcel laid out as the driver takes it: scalars with the forms of buffers and objects in between, and the
 * table of those forms. Buffers are sent from where they lie. They, the objects and this must live until the
 * driver has taken the message.
 */
class WrittenTransaction {
  public:
    WrittenTransaction() = default;
    WrittenTransaction(const WrittenTransaction&) = delete;
    WrittenTransaction& operator=(const WrittenTransaction&) = delete;

    /**
     * @param most bytes that the transaction may have
     * @return FAILED_TRANSACTION when it has more, or too many descriptors; BAD_VALUE for one that is not
     *     open; NO_MEMORY; the failure of an earlier write to the parcel, or the translator's failure
     */
    status_t write(const Parcel& parcel, ObjectTranslator* objects, size_t most);

    /** Fills in what a command says of data, table and buffers. */
    void fill(binder_transaction_data_sg* command) const;

    /** As the driver will read them. */
    const uint8_t* data() const { return mData.data(); }
    size_t dataBytes() const { return mData.size(); }
    const binder_size_t* places() const { return mPlaces.data(); }
    size_t placeCount() const { return mPlaces.size(); }

  private:
    uint8_t* append(const void* bytes, size_t size);

    InlineVector<uint8_t, 1024> mData;
    InlineVector<binder_size_t, 16> mPlaces;
    size_t mBufferBytes = 0;
};

/**
 * Makes the parcel the reader and keeper of a copy of a received message; the driver's memory may be given
 * back afterwards. The driver has checked the sender's message before it delivered it, but not all that a
 * reader relies on: everything is checked here. A message that is refused is dropped.
 *
 * The descriptors of native handles are copied, too: with its memory, the driver closes its own.
 *
 * @param memory where the message lies
 * @param rule the broken one, when the result is BAD_VALUE
 * @return OK, BAD_VALUE, NO_MEMORY; -EMFILE when there is no room for its descriptors
 */
status_t readTransaction(const binder_transaction_data& received, const ReceivedMemory& memory,
                         ObjectTranslator* objects, Parcel* parcel, const char** rule);

/**
 * Closes what a message has brought that nobody is to read: descriptors that lie in it by themselves. The
 * driver leaves them to the receiver. To be called before the driver's memory is given back.
 */
void dropTransaction(const binder_transaction_data& received, const ReceivedMemory& memory);

}  // namespace android::hardware
