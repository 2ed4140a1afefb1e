#define LOG_TAG "hidl"

#include <hidl/Status.h>
#include <log/log.h>

#include <new>

#include "platform/binding/StatusText.h"

namespace android::hardware {

Status Status::fromExceptionCode(int32_t exception, const char* message) {
    Status status;
    status.setException(exception, message);
    return status;
}

Status Status::fromStatusT(status_t error) {
    Status status;
    status.setFromStatusT(error);
    return status;
}

void Status::setException(int32_t exception, const char* message) {
    mException = exception;
    mTransactionError = exception == EX_TRANSACTION_FAILED ? FAILED_TRANSACTION : OK;
    try {
        mMessage = *message == '\0' ? nullptr : std::make_shared<const std::string>(message);
    } catch (const std::bad_alloc&) {
        mMessage = nullptr;  // the number says enough
    }
}

std::string Status::description() const {
    if (isOk()) {
        return "ok";
    }
    std::string text = "exception " + std::to_string(mException);
    if (mTransactionError != OK) {
        text += ", transaction error " + statusText(mTransactionError);
    }
    if (mMessage != nullptr) {
        text += ": " + *mMessage;
    }
    return text;
}

status_t readFromParcel(Status* status, const Parcel& parcel) {
    int32_t exception = 0;
    const status_t error = parcel.readInt32(&exception);
    if (error != OK) {
        return error;
    }
    const char* message = "";
    if (exception != Status::EX_NONE) {
        message = parcel.readCString();
        if (message == nullptr) {
            return NOT_ENOUGH_DATA;
        }
    }
    status->setException(exception, message);
    return OK;
}

status_t writeToParcel(const Status& status, Parcel* parcel) {
    const status_t error = parcel->writeInt32(status.exceptionCode());
    return error != OK || status.isOk() ? error : parcel->writeCString(status.exceptionMessage());
}

namespace details {

void ReturnBase::endForFailure(const char* fault) const {
    LOG_ALWAYS_FATAL("a call that failed %s: %s", fault, description().c_str());
}

}  // namespace details

}  // namespace android::hardware
