#pragma once

#include <hidl/HidlSupport.h>

#include <cstdint>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// Hears of the death of a client, under the cookie with which the client was linked to it. No state: one
/// object serves every link.
class ClientDeathRecipient : public ::android::hardware::hidl_death_recipient {
  public:
    /// Called on a platform thread, once for each link whose client has died; the object is not used. Only
    /// logs the departure so far, since nothing is kept of any client yet.
    void serviceDied(uint64_t cookie, const ::android::wp<::android::hidl::base::V1_0::IBase>& who) override;
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
