#include "simulator/storage/Identity.h"

#include <sys/random.h>

#include <cstdio>
#include <string>

#include "simulator/board/Board.h"
#include "simulator/board/Status.h"
#include "simulator/storage/IniStore.h"

namespace simulator {
namespace {

constexpr char kFile[] = "identity.ini";
constexpr size_t kMaxBytes = 4096;
constexpr mode_t kMode = 0644;

int32_t create(StateFolder& root) {
    unsigned char bytes[8];
    if (getrandom(bytes, sizeof(bytes), 0) != static_cast<ssize_t>(sizeof(bytes))) {
        return kIoError;
    }
    std::string text = "; Made on the first start.\nmodel = SIM-55UHD\ncustomer = SIM\nserial = SIM";
    for (const unsigned char byte : bytes) {
        char digits[3];
        snprintf(digits, sizeof(digits), "%02X", byte);
        text += digits;
    }
    return root.create(kFile, text + "\n", kMode);
}

}  // namespace

int32_t readIdentity(Identity* identity) {
    static StateFolder& sRoot = *new StateFolder(boardState(), "");
    std::string content;
    int32_t status = sRoot.read(kFile, kMaxBytes, content);
    if (status == kNotFound) {
        status = create(sRoot);
        status = status == kOk ? sRoot.read(kFile, kMaxBytes, content) : status;
    }
    if (status != kOk) {
        return status;
    }
    IniContents contents;
    status = contents.read(content);
    *identity = {contents.get("model", ""), contents.get("serial", ""), contents.get("customer", "")};
    return status != kOk ? status : identity->serial.empty() ? kBadFile : kOk;
}

}  // namespace simulator
