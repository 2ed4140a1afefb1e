#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Model.h"

namespace fapictl {

/**
 * Runs one command line, without the program's name, on the package's table. Results go to out, everything
 * else to err. Never throws.
 */
Exit run(const Package& package, const std::vector<std::string>& arguments, std::ostream& out,
         std::ostream& err);

}  // namespace fapictl
