#include "simulator/storage/IniStore.h"

#include <fcntl.h>

#include <cstring>
#include <ctime>
#include <optional>

#include "simulator/board/Board.h"
#include "simulator/board/Refusals.h"
#include "simulator/board/Status.h"
#include "simulator/board/Text.h"
#include "simulator/storage/IniText.h"

namespace simulator {
namespace {

constexpr mode_t kNewFileMode = 0644;

// A file that was written this recently may be written again without any of its times changing: the kernel's
// clock for them ticks every 1 to 10 ms. Until then it is read anew each time.
constexpr int64_t kSettledNanoseconds = 100'000'000;

/** The file's full name; empty when it is not a good one. */
std::string fileName(const char* name) {
    const size_t length = strnlen(name, IniStore::kMaxNameBytes + 1);
    const std::string_view view(name, length);
    if (name[0] == '.' || !isName(view, IniStore::kMaxNameBytes, "._-")) {
        return {};
    }
    const bool suffixed = length > 4 && view.substr(length - 4) == ".ini";
    return std::string(view) + (suffixed ? "" : ".ini");
}

struct Parameter {
    std::string section;
    std::string key;
};

/** Refuses whatever a file would not give back as the same section and key. */
std::optional<Parameter> parameterName(const char* text) {
    const std::string_view view(text, strnlen(text, IniStore::kMaxParameterBytes + 1));
    const size_t colon = view.find(':');
    const std::string_view section = colon == std::string_view::npos ? "" : view.substr(0, colon);
    const std::string_view key = colon == std::string_view::npos ? view : view.substr(colon + 1);
    if (view.size() > IniStore::kMaxParameterBytes || key.empty() || std::strchr("[;#", key[0]) != nullptr ||
        key.find('=') != std::string_view::npos || section.find(']') != std::string_view::npos) {
        return std::nullopt;
    }
    for (const char c : view) {
        if (static_cast<unsigned char>(c) < ' ') {
            return std::nullopt;
        }
    }
    for (const std::string_view part : {section, key}) {
        if (!part.empty() && (part.front() == ' ' || part.back() == ' ')) {
            return std::nullopt;
        }
    }
    return Parameter{std::string(section), std::string(key)};
}

/** A parameter as IniContents has it, which is as clients write it: with a colon of its own a key has one in
 * front where it has no section. */
std::string nameOf(std::string_view section, std::string_view key) {
    const bool bare = section.empty() && key.find(':') == std::string_view::npos;
    return bare ? std::string(key) : std::string(section).append(":").append(key);
}

}  // namespace

int32_t IniContents::read(const std::string& text) {
    if (text.find('\0') != std::string::npos) {
        return kBadFile;
    }
    size_t number = 0;
    for (const IniLine& line : iniLines(withoutMark(text))) {
        ++number;
        if (line.kind == IniLine::Parameter) {
            Value& value = parameters[nameOf(*line.section, line.key)];
            value = {std::string(line.value), number, value.times + 1};
        } else if (line.kind == IniLine::Junk) {
            constexpr size_t kShown = 40;
            faults[number] = "\"" + std::string(line.content.substr(0, kShown)) +
                             "\" is neither a parameter nor a heading";
        }
    }
    return kOk;
}

std::string IniContents::get(const std::string& parameter, const std::string& otherwise) const {
    const auto found = parameters.find(parameter);
    return found == parameters.end() ? otherwise : found->second.text;
}

std::vector<std::string> IniContents::faultLines() const {
    std::vector<std::string> lines;
    for (const auto& [number, fault] : faults) {
        lines.push_back("line " + std::to_string(number) + ": " + fault);
    }
    return lines;
}

struct IniStore::File {
    File(std::string fileName, const struct stat& status) : name(std::move(fileName)), stamp(status) {}

    const std::string name;
    const FileStamp stamp;
    IniContents contents;
};

IniStore::IniStore(const StateDirectory& state, const char* folder)
    : mFolder(state, folder), mFolderPath(state.path() + "/" + folder + "/") {}

IniStore::~IniStore() = default;

int32_t IniStore::load(const std::string& name, std::shared_ptr<const File>& file) {
    struct stat status {};
    if (fstatat(AT_FDCWD, (mFolderPath + name).c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
        const FileStamp stamp(status);
        std::lock_guard<std::mutex> lock(mCacheMutex);
        for (const std::shared_ptr<const File>& cached : mCache) {
            if (cached != nullptr && cached->name == name && cached->stamp == stamp) {
                file = cached;
                return kOk;
            }
        }
    }

    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    std::string text;
    if (const int32_t result = mFolder.read(name, kMaxFileBytes, text, &status); result != kOk) {
        return result;
    }
    const auto loaded = std::make_shared<File>(name, status);
    if (const int32_t result = loaded->contents.read(text); result != kOk) {
        return result;
    }
    file = loaded;

    const int64_t age = (static_cast<int64_t>(now.tv_sec) - status.st_mtim.tv_sec) * 1'000'000'000 +
                        now.tv_nsec - status.st_mtim.tv_nsec;
    if (age >= kSettledNanoseconds) {
        std::lock_guard<std::mutex> lock(mCacheMutex);
        for (std::shared_ptr<const File>& cached : mCache) {
            if (cached != nullptr && cached->name == name) {
                cached = file;
                return kOk;
            }
        }
        mCache[mNextSlot++ % kCachedFiles] = file;
    }
    return kOk;
}

int32_t IniStore::get(const char* file, const char* parameter, char* buffer, size_t size) {
    if (buffer == nullptr || size == 0) {
        return kOutOfRange;
    }
    buffer[0] = '\0';
    if (file == nullptr || parameter == nullptr) {
        return kOutOfRange;
    }
    const std::string name = fileName(file);
    const std::optional<Parameter> asked = parameterName(parameter);
    if (name.empty() || !asked) {
        return kBadName;
    }
    std::shared_ptr<const File> loaded;
    if (const int32_t result = load(name, loaded); result != kOk) {
        return result;
    }
    const auto& parameters = loaded->contents.parameters;
    const auto found = parameters.find(nameOf(asked->section, asked->key));
    if (found == parameters.end()) {
        return kNotFound;
    }
    const std::string& value = found->second.text;
    if (value.size() >= size) {
        return kTooLong;
    }
    memcpy(buffer, value.c_str(), value.size() + 1);
    return kOk;
}

int32_t IniStore::create(const char* file, const std::string& text) {
    const std::string name = fileName(file);
    return name.empty() ? kBadName : mFolder.create(name, text, kNewFileMode);
}

int32_t IniStore::read(const char* file, IniContents* contents) const {
    const std::string name = fileName(file);
    std::string text;
    if (name.empty()) {
        return kBadName;
    }
    const int32_t result = mFolder.read(name, kMaxFileBytes, text);
    return result == kOk ? contents->read(text) : result;
}

int32_t IniStore::set(const char* file, const std::vector<std::pair<std::string, std::string>>& values) {
    if (file == nullptr) {
        return kOutOfRange;
    }
    const std::string name = fileName(file);
    std::vector<Parameter> asked;
    for (const auto& [parameter, value] : values) {
        const std::optional<Parameter> one = parameterName(parameter.c_str());
        if (name.empty() || !one) {
            return kBadName;
        }
        if (value.size() > kMaxValueBytes || value.find_first_of("\r\n") != std::string::npos) {
            return kOutOfRange;
        }
        asked.push_back(*one);
    }
    return mFolder.change(name, kMaxFileBytes, kNewFileMode, [&](std::string& content) {
        for (size_t i = 0; i < values.size(); ++i) {
            content = withIniValue(content, asked[i].section, asked[i].key, values[i].second);
        }
        // Whatever a file by other hands contains, its reader has the last word on whether values come back.
        IniContents check;
        bool good = content.size() <= kMaxFileBytes && check.read(content) == kOk;
        for (size_t i = 0; good && i < values.size(); ++i) {
            const auto stored = check.parameters.find(nameOf(asked[i].section, asked[i].key));
            good = stored != check.parameters.end() && stored->second.text == values[i].second;
        }
        if (!good) {
            complain(mFolder.name() + "/" + name +
                     " would not give back what is set in it: it stays as it is");
        }
        return good ? int32_t{kOk} : kBadFile;
    });
}

IniStore& boardIni() {
    static IniStore& sIni = *new IniStore(boardState());
    return sIni;
}

IniStore& boardSettings() {
    static IniStore& sSettings = *new IniStore(boardState(), "settings");
    return sSettings;
}

}  // namespace simulator
