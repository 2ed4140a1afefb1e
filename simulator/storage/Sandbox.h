#pragma once

#include <string>

#include "simulator/board/StateDirectory.h"

namespace simulator {

/** Reads until the buffer is full or the file ends; *count is right after a failure too. */
int32_t readAt(int file, unsigned char* data, size_t length, uint64_t offset, size_t* count);

/**
 * The board's file system: the folder files/ of the state folder, which is "/" to paths.
 *
 * No path leaves it, whatever `..`, absolute paths and symbolic links in it say: the kernel resolves paths as
 * if that folder were the root of all files. A path has at most kMaxDepth names. Keeps no state: any thread.
 */
class Sandbox {
  public:
    /** Bounds how deep folders nest: removing or copying them takes up to three descriptors for each. */
    static constexpr unsigned kMaxDepth = 16;

    explicit Sandbox(const StateDirectory& state) : mState(state) {}

    /** As open(2); closed on exec, and waits for no other end of a FIFO. */
    Opened open(const char* path, int flags, mode_t mode = 0) const;
    /** As open(), of a plain file; kBadFile for anything else. */
    Opened openFile(const char* path, int flags, mode_t mode = 0) const;

    /** Where a path's last name is or would be. */
    struct Place {
        Descriptor folder;
        /** A plain name, for the *at functions that follow no link. */
        std::string name;
        /** Written with a slash after it. */
        bool asFolder = false;
        /** The names of the path, this one included. */
        unsigned depth = 0;
        /** kOk when the others hold. */
        int32_t status;
    };
    /** The parent must exist. kBadName when the last name is none, ".", "..", or too long. */
    Place placeOf(const char* path) const;
    /** Of an open file, whatever links led to it; its depth is 0. kBusy when it has been moved or removed. */
    Place placeOf(const Opened& file) const;

    /** Whether an open file is the root folder. */
    bool isRoot(const struct stat& status) const;

  private:
    const StateDirectory& mState;
};

/** The board's own; made on first use, never destroyed. */
const Sandbox& boardFiles();

}  // namespace simulator
