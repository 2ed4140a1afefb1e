#pragma once

#include <cstdint>

namespace simulator {

/** Makes what is missing of what a set leaves the factory with: its identity and the configuration files,
 * which clients and engineers may change from then on. kOk or a status. */
int32_t deliver();

}  // namespace simulator
