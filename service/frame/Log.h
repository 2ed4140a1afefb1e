#pragma once

#include <android/log.h>

#include "service/frame/Debug.h"

#ifndef LOG_TAG
#error "Define LOG_TAG, the class's name followed by (server), before the first include."
#endif

// Log lines, written only while u8TvFactoryDebug is non-zero (the values are not even computed otherwise):
//
//     FAPI_LOGD("u8LockStatus %d", u8LockStatus);
//     D ZvtTvFApiInputSource(server): <a_hidl_zvttvfapi_inpsrc_check_vd_signal_locked:91> u8LockStatus 1
//
// The format must be a literal; it is checked against its values (at most eight) as printf's is. The name in
// the prefix is __func__, so a line must stand in the method itself, never in a lambda.

#define FAPI_LOGD(...) FAPI_LOG(ANDROID_LOG_DEBUG, __func__, __VA_ARGS__)
#define FAPI_LOGI(...) FAPI_LOG(ANDROID_LOG_INFO, __func__, __VA_ARGS__)
#define FAPI_LOGE(...) FAPI_LOG(ANDROID_LOG_ERROR, __func__, __VA_ARGS__)

/// An error line that carries name and line twice, "<name:line> [name(line)]text". For the FAPI_TEXT_ family.
#define FAPI_LOGE_DOUBLED(text) FAPI_LOGE("[%s(%d)]" text, __func__, __LINE__)

/// The line that tells how a call ended: "<what> Fail!" at error priority, or "<what> OK!" at debug priority.
#define FAPI_LOG_OUTCOME(what, status) FAPI_LOG_OUTCOME_OK_AT(ANDROID_LOG_DEBUG, what, status)

/// The same with error priority for both, for the methods whose success is an error line too.
#define FAPI_LOGE_OUTCOME(what, status) FAPI_LOG_OUTCOME_OK_AT(ANDROID_LOG_ERROR, what, status)

#define FAPI_LOG_OUTCOME_OK_AT(priority, what, status)   \
    do {                                                 \
        if ((status) != 0) {                             \
            FAPI_LOGE(what " Fail!\n");                  \
        } else {                                         \
            FAPI_LOG(priority, __func__, what " OK!\n"); \
        }                                                \
    } while (false)

/// The general form, for a line whose prefix names another function than the one that it stands in.
#define FAPI_LOG(priority, name, ...)                                                                  \
    do {                                                                                               \
        if (u8TvFactoryDebug != 0) {                                                                   \
            FAPI_LOG_FORM(__VA_ARGS__, VALUES, VALUES, VALUES, VALUES, VALUES, VALUES, VALUES, VALUES, \
                          TEXT, )                                                                      \
            (priority, name, __VA_ARGS__);                                                             \
        }                                                                                              \
    } while (false)

// A text without values must not leave a comma behind it, and C++17 has no way to drop one: hence two forms,
// chosen by the number of arguments.
#define FAPI_LOG_FORM(_1, _2, _3, _4, _5, _6, _7, _8, _9, form, ...) FAPI_LOG_##form
#define FAPI_LOG_TEXT(priority, name, text) \
    __android_log_print(priority, LOG_TAG, "<%s:%d> " text, name, __LINE__)
#define FAPI_LOG_VALUES(priority, name, format, ...) \
    __android_log_print(priority, LOG_TAG, "<%s:%d> " format, name, __LINE__, __VA_ARGS__)

// Texts that recur across interfaces. They are fixed to the letter, typing errors included: do not correct
// them.

/// A record of the client's has no counterpart in the chip-layer library.
#define FAPI_TEXT_TYPES_MISMATCH "FAIL: types & a_zvttvfapi_types are mismatch! Please check it!\n"
/// Turning a library's text into a HIDL one raised an exception.
#define FAPI_TEXT_EXCEPTION "FAIL: Due to execption occurred, Please check it\n"
/// An argument from the client is unusable.
#define FAPI_TEXT_INVALID_INPUT "Invalid input param from Java!\n"
/// A kind of request that is known but not supported; both lines, in this order.
#define FAPI_TEXT_NOT_IMPLEMENTED "Not implement in hidl interface yet!!\n"
#define FAPI_TEXT_PLEASE_IMPLEMENT "Please implement it!!\n"
