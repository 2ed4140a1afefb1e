#pragma once

#include <string>
#include <vector>

#include "bench/common/Table.h"

namespace bench {

/** An option of one program, beside those that all share; its value is the default until another is given. */
struct ExtraOption {
    std::string name;
    std::string description;
    std::string* value;
};

/** Reads the command line. Ends the program, with its help or a message, when that is all there is to do. */
void parseOptions(int argc, char** argv, const std::string& purpose, Options* options,
                  const std::vector<ExtraOption>& extra = {});

}  // namespace bench
