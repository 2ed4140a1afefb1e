// The functions of the chip layer, as the probe defines them.

#include <cstdint>
#include <iterator>
#include <type_traits>

#include "chiplayer/chiplayer.h"
#include "tools/check/Probe.h"

#include <ProbeFunctions.inc>
