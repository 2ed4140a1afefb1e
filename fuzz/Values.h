#pragma once

#include "fuzz/Choices.h"
#include "tools/fapictl/Model.h"

namespace fuzz {

/**
 * A value that fits the type. The plainest one comes of zeros, the greatest of ones, the least of twos: so an
 * input of one byte repeated is a call of the extremes.
 */
fapictl::Json makeValue(const fapictl::Type& type, Choices& choices);

}  // namespace fuzz
