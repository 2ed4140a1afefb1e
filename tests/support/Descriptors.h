#pragma once

#include <sys/types.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <system_error>

/**
 * How many descriptors a process has open, pipes apart. The service and the runtime make none; a sanitizer's
 * own two to the program that finds its symbols stay open from the first time it needs one.
 */
inline size_t openDescriptors(pid_t pid) {
    const std::filesystem::directory_iterator all("/proc/" + std::to_string(pid) + "/fd");
    return static_cast<size_t>(std::count_if(begin(all), end(all), [](const auto& descriptor) {
        std::error_code gone;  // closed since it was listed
        const std::string target = read_symlink(descriptor.path(), gone).string();
        return !gone && target.rfind("pipe:", 0) != 0;
    }));
}
