#include "simulator/board/Identity.h"

#include <sys/random.h>

#include <cstdio>
#include <sstream>

#include "simulator/board/Board.h"
#include "simulator/board/Status.h"

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

std::string trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\r");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t\r") + 1 - first);
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
    std::istringstream lines(content);
    for (std::string line; std::getline(lines, line);) {
        const size_t equals = line.find('=');
        const std::string key = trimmed(line.substr(0, equals));
        const std::string value = equals == std::string::npos ? "" : trimmed(line.substr(equals + 1));
        for (const auto& [name, field] : {std::pair("model", &identity->model),
                                          {"serial", &identity->serial},
                                          {"customer", &identity->customer}}) {
            if (key == name) {
                *field = value;
            }
        }
    }
    return identity->serial.empty() ? kBadFile : kOk;
}

}  // namespace simulator
