#include "simulator/board/Registers.h"

#include <cstdio>

#include "simulator/board/Status.h"

namespace simulator {
namespace {

const RegisterBank* find(uint32_t bank, uint32_t offset) {
    for (const RegisterBank& known : kRegisterBanks) {
        if (known.bank == bank) {
            return offset < known.count ? &known : nullptr;
        }
    }
    return nullptr;
}

}  // namespace

void Registers::reset() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mWritten.clear();
}

int32_t Registers::read(uint32_t bank, uint32_t offset, uint32_t* value) const {
    const RegisterBank* const known = find(bank, offset);
    if (known == nullptr || value == nullptr) {
        return kOutOfRange;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto written = mWritten.find({bank, offset});
    *value = written != mWritten.end()                          ? written->second
             : bank == kStatusBank && offset == kChipIdRegister ? kChipId
                                                                : known->reset;
    return kOk;
}

int32_t Registers::write(uint32_t bank, uint32_t offset, uint32_t value) {
    const RegisterBank* const known = find(bank, offset);
    if (known == nullptr) {
        return kOutOfRange;
    }
    if (!known->writable) {
        return kDenied;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    mWritten[{bank, offset}] = value;
    return kOk;
}

void Registers::report(std::initializer_list<Setting> settings) {
    const std::lock_guard<std::mutex> lock(mMutex);
    for (const Setting& setting : settings) {
        mWritten[{kStatusBank, setting.offset}] = setting.value;
    }
}

std::string Registers::describe() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    std::string text;
    for (const auto& [place, value] : mWritten) {
        char line[64];
        snprintf(line, sizeof(line), "register %u:0x%x 0x%08x\n", place.first, place.second, value);
        text += line;
    }
    return text;
}

}  // namespace simulator
