#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

namespace fapictl {

/** What the process ends with. */
enum class Exit {
    Success = 0,
    Status = 1,     // the method reported a status other than 0, or that it was not done
    Usage = 2,      // a name, option or argument is wrong; nothing was called
    NotFound = 3,   // the service is not registered, or it or the watched events were not in time
    Transport = 4,  // the call did not come back, or not in time, or the watched service died
    Output = 5,     // the results could not be written
    Command = 6,    // the command that watch runs failed, or could not be run
};

/** Ends the command: the message goes to standard error, the code to the caller. */
struct Failure : std::runtime_error {
    Failure(Exit exit, const std::string& message) : std::runtime_error(message), code(exit) {}
    Exit code;
    bool dead = false;                   // the service's process has ended
    std::optional<int64_t> status = {};  // that was the failure
};

}  // namespace fapictl
