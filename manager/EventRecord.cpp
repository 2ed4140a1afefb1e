#include "manager/EventRecord.h"

#include <algorithm>
#include <cstring>

#include "service/frame/Record.h"

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

HidlEventRecord::HidlEventRecord(const fapi_core::ZvtTvFApiEventCommonObject& stChip)
    : mBytes(Scratch<uint8_t>::zeroed(static_cast<uint32_t>(stChip.vecValue.size()))) {
    auto& [u32Value, strValue, vecValue] = mHidl;
    clearPadding(mHidl, u32Value, strValue, vecValue);
    u32Value = stChip.u32Value;
    const char* text = stChip.strValue.c_str();
    strValue.setToExternal(text, std::strlen(text));
    if (mBytes) {
        std::copy_n(stChip.vecValue.data(), mBytes.size(), mBytes.get());
        vecValue.setToExternal(mBytes.get(), mBytes.size());
    }
}

void ChipTwin<ZvtTvFApiEventCommonObject>::copy(const ZvtTvFApiEventCommonObject& stHidl, type& stChip) {
    stChip.u32Value = stHidl.u32Value;
    stChip.strValue.assign(stHidl.strValue.c_str(), stHidl.strValue.size());
    stChip.vecValue.assign(stHidl.vecValue.begin(), stHidl.vecValue.end());
}

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
