#pragma once

#include <string_view>
#include <vector>

namespace fapictl {

/** A file of the page that the program serves, as it is in tools/fapictl/page. */
struct PageFile {
    std::string_view name;  // without a folder
    std::string_view type;  // as HTTP says it
    std::string_view content;
};

/** All of them, written when the tool is built. */
const std::vector<PageFile>& pageFiles();

}  // namespace fapictl
