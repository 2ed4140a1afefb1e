#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>

namespace simulator {

// Whole trees of files below an open folder. Symbolic links are never followed. `levels` is how many folders
// may nest in what is given.

/** Removes a file, a link, or a folder with all that is in it; what fails leaves the rest removed. */
int32_t removeTree(int folder, const std::string& name, unsigned levels);

/**
 * Copies the plain file or folder that source has open for reading to a new name in the folder, with its
 * permission bits but without set-user-ID and its like. kBadFile when there is anything but files and folders
 * in it, or more levels; kOutOfRange when the copy would contain itself. Leaves nothing behind when it fails.
 */
int32_t copyTree(int source, int folder, const std::string& name, unsigned levels);

}  // namespace simulator
