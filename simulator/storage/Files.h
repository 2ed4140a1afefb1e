#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace simulator::files {

// What clients do with the files of the board's file system (simulator/storage/Sandbox.h), by their paths.
// They are as durable as files are: on the disk after sync(). Each returns kOk or a status; any thread.

/** Whether there is a plain file that can be read, a folder that can be listed. */
int32_t check(const char* path);
int32_t checkFolder(const char* path);

/** Makes an empty file, a folder; kExists when there is something. */
int32_t create(const char* path);
int32_t createFolder(const char* path);

/** Removes a file, a link, or a folder with all in it. */
int32_t remove(const char* path);

/** Copies a file or folder; there is never half a copy at the destination. kExists unless it may replace. */
int32_t copy(const char* from, const char* to, bool replace);

/** Sets permission bits, up to 07777. */
int32_t setMode(const char* path, unsigned mode);

/** CRC-32 of a file. */
int32_t checksum(const char* path, unsigned* result);

/** Up to length bytes from the offset on; *count is right after a failure too. */
int32_t read(const char* path, unsigned char* data, size_t length, uint64_t offset, unsigned* count);

/** A line from the offset on, without its end, NUL-terminated, cut to the buffer of length bytes. */
int32_t readLine(const char* path, unsigned char* data, size_t length, uint64_t offset);

/** Writes in a mode of fopen(): w, w+, a, a+ or r+; kOutOfRange for another. */
int32_t write(const char* path, const unsigned char* data, size_t length, const char* mode);

/** A whole file of at most limit bytes; kTooLong for a larger one. */
int32_t load(const char* path, size_t limit, std::string* content);

/** Puts all that was written on the disk. */
int32_t sync();

}  // namespace simulator::files
