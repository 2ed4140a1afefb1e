#pragma once

#include <hwbinder/Parcel.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace android::hardware {

/** How a call went, apart from its results: fine, an exception that the object raised, or a transport error.
 */
class Status final {
  public:
    enum Exception : int32_t {
        EX_NONE = 0,
        EX_ILLEGAL_ARGUMENT = -3,
        EX_NULL_POINTER = -4,
        EX_TRANSACTION_FAILED = -129,  // transactionError() tells more
    };

    static Status ok() { return Status(); }
    static Status fromExceptionCode(int32_t exception, const char* message = "");
    /** @param status of the transport; OK makes a fine status. */
    static Status fromStatusT(status_t status);

    Status() = default;

    bool isOk() const { return mException == EX_NONE; }
    /** The object's process is gone. */
    bool isDeadObject() const { return mTransactionError == DEAD_OBJECT; }
    int32_t exceptionCode() const { return mException; }
    const char* exceptionMessage() const { return mMessage == nullptr ? "" : mMessage->c_str(); }
    /** OK unless the exception is EX_TRANSACTION_FAILED. */
    status_t transactionError() const { return mTransactionError; }
    std::string description() const;

    void setException(int32_t exception, const char* message);
    void setFromStatusT(status_t status) {
        mException = status == OK ? EX_NONE : EX_TRANSACTION_FAILED;
        mTransactionError = status;
        mMessage.reset();
    }

  private:
    int32_t mException = EX_NONE;
    status_t mTransactionError = OK;
    std::shared_ptr<const std::string> mMessage;  // null when there is none, as in all that went well
};

/** @return the parcel's status; a peer can not make one that counts as a transport error of this process. */
status_t readFromParcel(Status* status, const Parcel& parcel);
status_t writeToParcel(const Status& status, Parcel* parcel);

namespace details {

/**
 * The part of a Return that does not depend on its value. A failed call that nobody asked about ends the
 * process where the Return is dropped, as the caller went on with results that it never got.
 */
class ReturnBase {
  public:
    ReturnBase() = default;
    ReturnBase(const Status& status) : mStatus(status) {}  // NOLINT(google-explicit-constructor)
    ReturnBase(ReturnBase&& other) noexcept
        : mStatus(std::move(other.mStatus)), mChecked(std::exchange(other.mChecked, true)) {}
    ReturnBase& operator=(ReturnBase&& other) noexcept {
        requireChecked();
        mStatus = std::move(other.mStatus);
        mChecked = std::exchange(other.mChecked, true);
        return *this;
    }
    ~ReturnBase() { requireChecked(); }

    bool isOk() const {
        mChecked = true;
        return mStatus.isOk();
    }
    bool isDeadObject() const {
        mChecked = true;
        return mStatus.isDeadObject();
    }
    const Status& status() const { return mStatus; }
    std::string description() const { return mStatus.description(); }
    /** Ends the process if the call failed. */
    void assertOk() const {
        if (!isOk()) {
            endForFailure("was used as if it had not");
        }
    }

  private:
    void requireChecked() const {
        if (!mChecked && !mStatus.isOk()) {
            endForFailure("was dropped unchecked");
        }
    }
    [[noreturn]] void endForFailure(const char* fault) const;

    Status mStatus;
    mutable bool mChecked = false;
};

}  // namespace details

/** Result of a call: a value if it went well. Ask isOk() before use. */
template <typename T>
class Return : public details::ReturnBase {
  public:
    Return(T value) : mValue(std::move(value)) {}  // NOLINT(google-explicit-constructor)
    Return(const Status& status)                   // NOLINT(google-explicit-constructor)
        : ReturnBase(status) {}

    /** The value; ends the process if the call failed. */
    operator T() const {  // NOLINT(google-explicit-constructor)
        assertOk();
        return mValue;
    }
    T withDefault(T fallback) const { return isOk() ? mValue : fallback; }

  private:
    T mValue{};
};

template <typename T>
class Return<sp<T>> : public details::ReturnBase {
  public:
    Return(T* value) : mValue(value) {}  // NOLINT(google-explicit-constructor)
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    Return(const sp<U>& value) : mValue(value) {}         // NOLINT(google-explicit-constructor)
    Return(const Status& status) : ReturnBase(status) {}  // NOLINT(google-explicit-constructor)

    /** The object, which may be null; ends the process if the call failed. */
    operator sp<T>() const {  // NOLINT(google-explicit-constructor)
        assertOk();
        return mValue;
    }
    sp<T> withDefault(const sp<T>& fallback) const { return isOk() ? mValue : fallback; }

  private:
    sp<T> mValue;
};

template <>
class Return<void> : public details::ReturnBase {
  public:
    Return() = default;
    Return(const Status& status) : ReturnBase(status) {}  // NOLINT(google-explicit-constructor)
};

inline Return<void> Void() {
    return {};
}

}  // namespace android::hardware
