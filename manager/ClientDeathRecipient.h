#pragma once

#include <hidl/HidlSupport.h>

#include <cstdint>

namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation {

/// Removes a client from the registry when it dies. No state: one object serves every link.
class ClientDeathRecipient : public ::android::hardware::hidl_death_recipient {
  public:
    /// Called on a platform thread, once for each link whose client has died. Removes the entry of that
    /// cookie, if there is one; waits for a delivery in progress. The object is not used.
    void serviceDied(uint64_t cookie, const ::android::wp<::android::hidl::base::V1_0::IBase>& who) override;
};

}  // namespace vendor::zentrovi::tv::zvttvfactory::V1_0::implementation
