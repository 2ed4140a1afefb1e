#pragma once

#include <string>
#include <vector>

namespace simulator {

/** Says on standard error what is wrong with a file of the state folder that hands may have edited, a line
 * each. What was said when the file was last looked at is not said again. Any thread. */
void tellFaults(const std::string& file, const std::vector<std::string>& faults);

}  // namespace simulator
