#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace fuzz {

/** An input read from its front as a row of choices; zeros when it has come to its end. */
class Choices {
  public:
    Choices() = default;
    Choices(const uint8_t* data, size_t size) : mNext(data), mLeft(size) {}

    bool atEnd() const { return mLeft == 0; }
    uint8_t byte() {
        if (mLeft == 0) {
            return 0;
        }
        --mLeft;
        return *mNext++;
    }
    /** Of at most so many bytes, the lowest first. */
    uint64_t number(size_t bytes = 8) {
        uint64_t value = 0;
        for (size_t i = 0; i < bytes; ++i) {
            value |= static_cast<uint64_t>(byte()) << (8 * i);
        }
        return value;
    }
    /** Shorter where the input ends. */
    std::string text(size_t length) {
        const Choices part = take(length);
        return {reinterpret_cast<const char*>(part.mNext), part.mLeft};
    }
    /** The next bytes, to be read by themselves. */
    Choices take(size_t length) {
        const Choices part(mNext, std::min(length, mLeft));
        mNext += part.mLeft;
        mLeft -= part.mLeft;
        return part;
    }
    std::string rest() { return text(mLeft); }

  private:
    const uint8_t* mNext = nullptr;
    size_t mLeft = 0;
};

}  // namespace fuzz
