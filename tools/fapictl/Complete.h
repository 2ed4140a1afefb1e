#pragma once

#include <string>
#include <vector>

#include "tools/fapictl/Model.h"

namespace fapictl {

/**
 * What may stand for the last word, which may be empty or the start of something. The words are those after
 * the program's name, as a shell splits them: "=" and ":" may be words of their own. A candidate that ends
 * with '=' wants a value right behind it. Nothing at all means that file names may be meant.
 */
std::vector<std::string> complete(const Package& package, const std::vector<std::string>& words);

}  // namespace fapictl
