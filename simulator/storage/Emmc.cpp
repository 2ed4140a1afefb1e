#include "simulator/storage/Emmc.h"

#include <fcntl.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "simulator/board/Board.h"
#include "simulator/board/Status.h"
#include "simulator/board/Text.h"
#include "simulator/storage/Sandbox.h"

namespace simulator {
namespace {

constexpr char kFolder[] = "emmc";
// A line each, NAME=VALUE.
constexpr char kEnvironmentFile[] = "env.txt";
constexpr mode_t kMode = 0600;

std::string fileOf(const EmmcArea& area) {
    return std::string(area.name) + ".bin";
}

bool goodName(const char* name) {
    return isName({name, strnlen(name, Emmc::kMaxNameBytes + 1)}, Emmc::kMaxNameBytes, "._-");
}

/** Where the variable's line begins, and what follows it; npos when there is none. */
struct Line {
    size_t begin;
    size_t next;
};
Line findVariable(const std::string& text, const std::string& name) {
    for (size_t begin = 0; begin < text.size();) {
        const size_t next = std::min(text.find('\n', begin), text.size() - 1) + 1;
        if (text.compare(begin, name.size(), name) == 0 && text[begin + name.size()] == '=') {
            return {begin, next};
        }
        begin = next;
    }
    return {std::string::npos, std::string::npos};
}

}  // namespace

Emmc::Emmc() : mFolder(boardState(), kFolder) {}

const EmmcArea* Emmc::findArea(const char* name) {
    for (const EmmcArea& area : kEmmcAreas) {
        if (strcmp(name, area.name) == 0) {
            return &area;
        }
    }
    return nullptr;
}

int32_t Emmc::read(const char* name, uint32_t offset, uint32_t length, unsigned char* data) const {
    if (name == nullptr || (data == nullptr && length > 0)) {
        return kOutOfRange;
    }
    const EmmcArea* const area = findArea(name);
    if (area == nullptr) {
        return kNotFound;
    }
    if (uint64_t{offset} + length > area->size) {
        return kOutOfRange;
    }
    const Opened folder = mFolder.open();
    if (folder.status != kOk) {
        return folder.status;
    }
    const Descriptor file(
            openat(folder.file.get(), fileOf(*area).c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    size_t count = 0;
    if (!file && errno != ENOENT) {
        return statusOf(errno);
    }
    const int32_t status = file ? readAt(file.get(), data, length, offset, &count) : kOk;
    memset(data + count, 0, length - count);
    return status;
}

int32_t Emmc::write(const char* name, uint32_t offset, uint32_t length, const unsigned char* data) {
    if (name == nullptr || (data == nullptr && length > 0)) {
        return kOutOfRange;
    }
    const EmmcArea* const area = findArea(name);
    if (area == nullptr) {
        return kNotFound;
    }
    if (!area->writable) {
        return kDenied;
    }
    if (uint64_t{offset} + length > area->size) {
        return kOutOfRange;
    }
    return mFolder.change(fileOf(*area), area->size, kMode, [&](std::string& content) {
        content.resize(std::max<size_t>(content.size(), size_t{offset} + length));
        memcpy(content.data() + offset, data, length);
        return kOk;
    });
}

int32_t Emmc::replace(const EmmcArea& area, const std::string& content) {
    if (content.size() > area.size) {
        return kOutOfRange;
    }
    return mFolder.replace(fileOf(area), content, kMode);
}

int32_t Emmc::get(const char* name, char* buffer, size_t size) const {
    if (buffer == nullptr || size == 0) {
        return kOutOfRange;
    }
    buffer[0] = '\0';
    if (name == nullptr) {
        return kOutOfRange;
    }
    if (!goodName(name)) {
        return kBadName;
    }
    std::string text;
    const int32_t status = mFolder.read(kEnvironmentFile, kEnvironmentBytes, text);
    if (status != kOk) {
        return status;
    }
    const Line line = findVariable(text, name);
    if (line.begin == std::string::npos) {
        return kNotFound;
    }
    std::string value = text.substr(line.begin, line.next - line.begin).substr(strlen(name) + 1);
    if (!value.empty() && value.back() == '\n') {
        value.pop_back();
    }
    if (value.size() >= size) {
        return kTooLong;
    }
    memcpy(buffer, value.c_str(), value.size() + 1);
    return kOk;
}

int32_t Emmc::set(const char* name, const char* value) {
    if (name == nullptr || value == nullptr) {
        return kOutOfRange;
    }
    if (!goodName(name)) {
        return kBadName;
    }
    const std::string text(value, strnlen(value, kMaxValueBytes + 1));
    if (text.size() > kMaxValueBytes || text.find_first_of("\r\n") != std::string::npos) {
        return kOutOfRange;
    }
    return mFolder.change(kEnvironmentFile, kEnvironmentBytes, kMode, [&](std::string& content) {
        if (!content.empty() && content.back() != '\n') {
            content += '\n';
        }
        for (Line line = findVariable(content, name); line.begin != std::string::npos;
             line = findVariable(content, name)) {
            content.erase(line.begin, line.next - line.begin);
        }
        if (!text.empty()) {
            content += std::string(name) + "=" + text + "\n";
        }
        return content.size() <= kEnvironmentBytes ? kOk : kFull;
    });
}

std::string Emmc::describe() const {
    std::string text;
    std::string content;
    if (mFolder.read(kEnvironmentFile, kEnvironmentBytes, content) == kOk) {
        for (size_t begin = 0; begin < content.size();) {
            const size_t next = std::min(content.find('\n', begin), content.size() - 1) + 1;
            text += "env " + content.substr(begin, next - begin);
            begin = next;
        }
        text += text.empty() || text.back() == '\n' ? "" : "\n";
    }
    for (const EmmcArea& area : kEmmcAreas) {
        const int32_t status = mFolder.read(fileOf(area), area.size, content);
        char line[160];
        if (status == kOk) {
            const uLong crc = crc32(crc32(0, nullptr, 0), reinterpret_cast<const Bytef*>(content.data()),
                                    static_cast<uInt>(content.size()));
            snprintf(line, sizeof(line), "area %s size %u, written up to %zu, crc32 of that %08lx\n",
                     area.name, area.size, content.size(), crc);
        } else {
            snprintf(line, sizeof(line), "area %s size %u, %s\n", area.name, area.size,
                     status == kNotFound ? "never written" : "cannot be read");
        }
        text += line;
    }
    return text;
}

Emmc& boardEmmc() {
    static Emmc& sEmmc = *new Emmc;
    return sEmmc;
}

}  // namespace simulator
