// A name of any bytes that the registry takes is found again, by itself and in the list; then its record is
// overwritten with any bytes: it is refused, or it is the same record.

#include "platform/socket/Registry.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "fuzz/Input.h"

using namespace android;
using namespace android::hardware;

namespace {

/** Removed with the process. */
struct Folder {
    Folder() { fuzz::require(mkdtemp(path) != nullptr); }
    ~Folder() { rmdir(path); }
    char path[64] = "/tmp/fuzz-registry-XXXXXX";
};

bool isSame(const ObjectReference& left, const ObjectReference& right) {
    return std::memcmp(&left, &right, sizeof(left)) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Folder sFolder;
    static const ObjectReference sReference{{1, 2, 3}, 4, 5};
    const std::string input(reinterpret_cast<const char*>(data), size);
    const size_t first = std::min(input.find('\n'), size);
    const size_t second = std::min(input.find('\n', first + 1), size);
    const std::string fqName = input.substr(0, first);
    const std::string instance = first < size ? input.substr(first + 1, second - first - 1) : "";
    const std::string record = second < size ? input.substr(second + 1) : "";

    Registry holder(sFolder.path);
    if (holder.take(fqName, instance, sReference) != OK) {
        return 0;
    }
    Registry reader(sFolder.path);
    ObjectReference found{};
    pid_t pid = 0;
    fuzz::require(reader.find(fqName, instance, &found, &pid) == OK && isSame(found, sReference) &&
                  pid == getpid());
    fuzz::require(reader.take(fqName, instance, sReference) == ALREADY_EXISTS);
    std::vector<RegistryEntry> entries;
    fuzz::require(reader.list(&entries) == OK && entries.size() == 1 && entries[0].fqName == fqName &&
                  entries[0].instance == instance && isSame(entries[0].reference, sReference));

    const std::string path = std::string(sFolder.path) + "/" + fqName + "+" + instance;
    const UniqueFd file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
    fuzz::require(pwrite(file.get(), record.data(), record.size(), 0) == static_cast<ssize_t>(record.size()));
    if (reader.find(fqName, instance, &found, &pid) == OK) {
        fuzz::require(isSame(found, sReference) && pid == getpid());
    }
    unlink(path.c_str());
    return 0;
}
