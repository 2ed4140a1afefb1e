#pragma once

#include <vendor/zentrovi/tv/zvttvfactory/1.0/types.h>

#include <cstdint>

#include "chiplayer/types.h"
#include "service/frame/Convert.h"
#include "service/frame/Scratch.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// The HIDL form of one payload record that a module has raised. The text refers to the module's characters
/// up to their first NUL; the bytes are copied to the heap, whatever their number, and end with this object.
/// It goes out as it lies in this object, which is therefore not to be copied.
class HidlEventRecord {
  public:
    /// The chip-layer record must outlive this object.
    explicit HidlEventRecord(const fapi_core::ZvtTvFApiEventCommonObject& stChip);
    HidlEventRecord(const HidlEventRecord&) = delete;
    HidlEventRecord& operator=(const HidlEventRecord&) = delete;

    /// False when there was no memory for the bytes.
    explicit operator bool() const { return static_cast<bool>(mBytes); }
    const ZvtTvFApiEventCommonObject& hidl() const { return mHidl; }

  private:
    Scratch<uint8_t> mBytes;
    ZvtTvFApiEventCommonObject mHidl{};
};

/// The record that a client posts, for toTwin(): the whole text, NULs included, and the bytes. Throws
/// std::bad_alloc.
template <>
struct ChipTwin<ZvtTvFApiEventCommonObject> {
    using type = fapi_core::ZvtTvFApiEventCommonObject;
    static void copy(const ZvtTvFApiEventCommonObject& stHidl, type& stChip);
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
