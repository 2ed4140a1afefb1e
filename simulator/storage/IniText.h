#pragma once

#include <string>
#include <string_view>

namespace simulator {

/**
 * The text of an INI file with one parameter set, everything else as it was, byte for byte: comments, blank
 * lines, line ends, lines that mean nothing.
 *
 * The last line of that section and key gets the value, else a line is added after the section's last
 * parameter, else a section at the end. An empty section stands for the lines before the first section.
 *
 * Requires a non-empty key without '=', a section without ']', neither with line ends, nor with spaces at
 * either end; a value without line ends. A value that begins or ends with a space, or is quoted itself, is
 * written in double quotes, which readers take off.
 */
std::string withIniValue(std::string_view text, std::string_view section, std::string_view key,
                         std::string_view value);

}  // namespace simulator
