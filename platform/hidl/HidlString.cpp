#define LOG_TAG "hidl"

#include <hidl/HidlString.h>
#include <log/log.h>

#include <cstring>

namespace android::hardware {

namespace {

void checkSize(size_t size) {
    LOG_ALWAYS_FATAL_IF(size >= UINT32_MAX, "hidl_string: %zu bytes are more than it can hold", size);
}

size_t lengthOf(const char* text) {
    return text == nullptr ? 0 : std::strlen(text);
}

}  // namespace

hidl_string::hidl_string(const char* text) {
    assign(text, lengthOf(text));
}

hidl_string::hidl_string(const char* text, size_t length) {
    assign(text, length);
}

hidl_string::hidl_string(const std::string& text) {
    assign(text.data(), text.size());
}

hidl_string::hidl_string(const hidl_string& other) {
    assign(other.mBuffer, other.mSize);
}

hidl_string::hidl_string(hidl_string&& other) noexcept {
    take(other);
}

hidl_string& hidl_string::operator=(const char* text) {
    assign(text, lengthOf(text));
    return *this;
}

hidl_string& hidl_string::operator=(const std::string& text) {
    assign(text.data(), text.size());
    return *this;
}

hidl_string& hidl_string::operator=(const hidl_string& other) {
    if (this != &other) {
        assign(other.mBuffer, other.mSize);
    }
    return *this;
}

hidl_string& hidl_string::operator=(hidl_string&& other) noexcept {
    if (this != &other) {
        clear();
        take(other);
    }
    return *this;
}

void hidl_string::clear() {
    if (mOwnsBuffer) {
        delete[] mBuffer;
    }
    mBuffer = "";
    mSize = 0;
    mOwnsBuffer = false;
}

void hidl_string::setToExternal(const char* data, size_t size) {
    checkSize(size);
    LOG_ALWAYS_FATAL_IF(data[size] != '\0', "hidl_string: the text does not end with NUL");
    clear();
    mBuffer = data;
    mSize = static_cast<uint32_t>(size);
}

void hidl_string::assign(const char* text, size_t length) {
    checkSize(length);
    // The text may lie in the buffer that is given up.
    const char* old = mOwnsBuffer ? mBuffer : nullptr;
    if (length == 0) {
        mBuffer = "";
    } else {
        char* copy = new char[length + 1];
        std::memcpy(copy, text, length);
        copy[length] = '\0';
        mBuffer = copy;
    }
    mSize = static_cast<uint32_t>(length);
    mOwnsBuffer = length != 0;
    delete[] old;
}

void hidl_string::take(hidl_string& other) {
    mBuffer = other.mBuffer;
    mSize = other.mSize;
    mOwnsBuffer = other.mOwnsBuffer;
    other.mOwnsBuffer = false;
    other.clear();
}

}  // namespace android::hardware
