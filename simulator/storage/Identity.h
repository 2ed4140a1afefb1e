#pragma once

#include <cstdint>
#include <string>

namespace simulator {

/** Who the board is: the file identity.ini of the state folder, which stays however often software is
 * replaced. */
struct Identity {
    std::string model;
    std::string serial;
    /** Whose configuration the board has; sets that were made before it was recorded have none. */
    std::string customer;
};

/** Reads the identity; makes one with a random serial number on the first start. kOk, or why it cannot be
 * had. */
int32_t readIdentity(Identity* identity);

}  // namespace simulator
