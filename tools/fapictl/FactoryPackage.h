#pragma once

#include "tools/fapictl/Model.h"

namespace fapictl {

/** The factory service's interfaces; generated from their declarations when the tool is built. */
const Package& factoryPackage();

}  // namespace fapictl
