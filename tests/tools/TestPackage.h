#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "tools/fapictl/CommandLine.h"
#include "tools/fapictl/Model.h"
#include "tools/fapictl/Names.h"

namespace fapictl {

/** The package of tests/tools/hal; generated. */
const Package& testPackage();

inline const Method& thingMethod(const std::string& name) {
    return findMethod(findInterface(testPackage(), "Thing"), name);
}

/** What a command line did. */
struct Ran {
    Exit code;
    std::string out;
    std::string err;
};

inline Ran ran(const Package& package, const std::vector<std::string>& words) {
    std::ostringstream out;
    std::ostringstream err;
    const Exit code = run(package, words, out, err);
    return {code, out.str(), err.str()};
}

}  // namespace fapictl
