#include "platform/binding/StatusText.h"

#include <cstring>

namespace android::hardware {

std::string statusText(status_t status) {
    switch (status) {
        case OK:
            return "OK";
        case BAD_TYPE:
            return "BAD_TYPE: the call is for another interface";
        case FAILED_TRANSACTION:
            return "FAILED_TRANSACTION: the message is too large, or the peer does not take it";
        case UNKNOWN_TRANSACTION:
            return "UNKNOWN_TRANSACTION: the object has no such method";
        case UNEXPECTED_NULL:
            return "UNEXPECTED_NULL: a reference is null";
        case UNKNOWN_ERROR:
            return "UNKNOWN_ERROR: the method is not called that way";
        case DEAD_OBJECT:
            return "DEAD_OBJECT: the object or its process is gone";
        case NOT_ENOUGH_DATA:
            return "NOT_ENOUGH_DATA: an argument is missing";
        case BAD_VALUE:
            return "BAD_VALUE: an argument does not have the announced form";
        default:
            return std::to_string(status) + (status < 0 ? std::string(": ") + strerror(-status) : "");
    }
}

}  // namespace android::hardware
