#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <string_view>

/** The runtime of this process and of those that it starts goes through the binder driver. */
inline bool isOnBinder() {
    const char* const transport = getenv("HIDL_TRANSPORT");
    return transport != nullptr && std::string_view(transport) == "binder";
}

/** For promises that are about one transport itself. */
#define ONLY_OVER_SOCKETS()                                  \
    if (isOnBinder()) {                                      \
        GTEST_SKIP() << "the binder driver has no such way"; \
    }
#define ONLY_ON_BINDER()                               \
    if (!isOnBinder()) {                               \
        GTEST_SKIP() << "of the binder driver's side"; \
    }
