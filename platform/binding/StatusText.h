#pragma once

#include <utils/Errors.h>

#include <string>

namespace android::hardware {

/** A status in words for logs and descriptions: its name, or the system's text for an errno. */
std::string statusText(status_t status);

}  // namespace android::hardware
