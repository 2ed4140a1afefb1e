#pragma once

#include <filesystem>

namespace fuzz {

/** A state folder of the process's own for the simulated board, made at the first call, which ends with the
 * process. No upgrade takes longer than a moment. */
const std::filesystem::path& stateFolder();

/** Makes the board ready and takes back what was forced: an input may order that it refuses everybody, and
 * what comes next would try nothing any more. */
void makeReady();

}  // namespace fuzz
