#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "simulator/board/StateDirectory.h"
#include "simulator/board/Status.h"

namespace simulator {

// This room: what the board keeps. Settings and parameter files, the file system, the eMMC, keys. It knows
// the board alone.

/** What an INI text says. */
struct IniContents {
    /** The last value of a parameter, where it is, and how often the parameter is given. */
    struct Value {
        std::string text;
        size_t line;
        unsigned times;
    };
    std::map<std::string, Value> parameters;  // by "section:key", or "key"
    /** What is wrong with lines, by their numbers; for a reader to add to. */
    std::map<size_t, std::string> faults;

    /** Reads a text; kBadFile when it is none. Lines that mean nothing are faults. */
    int32_t read(const std::string& text);

    /** The last value of a parameter, or the other text. */
    std::string get(const std::string& parameter, const std::string& otherwise) const;

    /** For tellFaults(): "line 3: ..." each. */
    std::vector<std::string> faultLines() const;
};

/**
 * INI files in a folder of the state folder: the board's configuration in ini/, say.
 *
 * A parameter is named by two texts. The first names the file, with or without its ".ini": at most 64
 * characters out of A-Z a-z 0-9 . _ -, not beginning with a dot. The second is "section:key", or "key" for a
 * parameter before the first section; at most 255 bytes, of which the section ends at the first colon. A key
 * with a colon of its own and no section is written ":key". Upper and lower case differ.
 *
 * A value is any bytes but NUL and line ends, at most 2047. Where a file has a key twice, the last one
 * counts.
 *
 * Other programs may edit the files at any time; the next read sees it. Every function may be called on any
 * thread; writes come one after the other.
 */
class IniStore {
  public:
    static constexpr size_t kMaxValueBytes = 2047;
    static constexpr size_t kMaxNameBytes = 64;
    static constexpr size_t kMaxParameterBytes = 255;
    /** Far beyond any real one; what is larger is refused with kBadFile. */
    static constexpr size_t kMaxFileBytes = 64 * 1024;

    explicit IniStore(const StateDirectory& state, const char* folder = "ini");

    /** A file as messages call it. */
    std::string pathOf(const char* file) const { return mFolder.name() + "/" + file + ".ini"; }

    ~IniStore();
    IniStore(const IniStore&) = delete;
    IniStore& operator=(const IniStore&) = delete;

    /**
     * Copies the value, NUL-terminated, into a buffer of size bytes. On failure the buffer holds an empty
     * text: kNotFound, kBadName, kTooLong, kBadFile, kIoError; kOutOfRange for a null pointer or a size of 0.
     */
    int32_t get(const char* file, const char* parameter, char* buffer, size_t size);

    /** Reads a file of the folder as a whole. kNotFound, kBadName, kBadFile, or why it cannot be read. */
    int32_t read(const char* file, IniContents* contents) const;

    /**
     * Sets a value; on kOk it is on the disk. kBadName, kOutOfRange (the value), kBadFile, or why the
     * disk refuses: nothing has changed, except that after kIoError the change may not survive a power cut.
     */
    int32_t set(const char* file, const char* parameter, const char* value) {
        return parameter == nullptr || value == nullptr ? kOutOfRange : set(file, {{parameter, value}});
    }

    /** The same for several parameters of a file: all or none. */
    int32_t set(const char* file, const std::vector<std::pair<std::string, std::string>>& values);

  private:
    struct File;
    static constexpr size_t kCachedFiles = 4;

    int32_t load(const std::string& name, std::shared_ptr<const File>& file);

    StateFolder mFolder;
    const std::string mFolderPath;

    std::mutex mCacheMutex;
    // Guarded by mCacheMutex: parsed files, and the place where the next one goes.
    std::shared_ptr<const File> mCache[kCachedFiles];
    size_t mNextSlot = 0;
};

/** The board's configuration files; made on first use, never destroyed. */
IniStore& boardIni();

/** What modules keep of their settings, out of clients' reach: settings/ of the state folder. */
IniStore& boardSettings();

}  // namespace simulator
