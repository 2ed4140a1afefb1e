#pragma once

#include <hidl/HidlSupport.h>

#include <array>
#include <cstddef>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// What an interface tells people of its state when its debug() is called: one fact a line, "key: value". It
/// lies in the object and asks for no memory.
///
///     StatePage page(IZvtTvFApiSystem::descriptor);
///     page.line("calls served: %u", u32Calls);
///     page.writeTo(handle);
class StatePage {
  public:
    /// Bytes of the longest page. Every pipe holds so many.
    static constexpr size_t kMostBytes = 4096;

    /// Begins with the interface's name and version. The name is lent: it must outlive the page.
    explicit StatePage(const char* descriptor);

    /// Adds a line, its end included. A line that finds no room is left out whole: whoever lists what grows
    /// bounds the list.
    void line(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// Writes the page to the handle's first descriptor, a pipe, which stays the handle's;
    /// without one, nothing. A reader that has gone costs nothing, one that does not read costs this thread a
    /// second: either is an error line, and so is a descriptor of another kind.
    void writeTo(const ::android::hardware::hidl_handle& handle) const;

  private:
    const char* const mDescriptor;
    std::array<char, kMostBytes> mText;
    size_t mSize = 0;
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
