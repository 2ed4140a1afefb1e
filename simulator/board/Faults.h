#pragma once

#include <string>
#include <vector>

namespace simulator {

/** Says on standard error what is wrong with a file of the state folder that hands may have edited, a line
 * each; a call on this thread that is refused has the first as its reason. What was said when the file was
 * last looked at is not said again, on whatever line ("line 3: ...") it stands now. Any thread. */
void tellFaults(const std::string& file, const std::vector<std::string>& faults);

}  // namespace simulator
