#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/** A line of an INI file. Positions count from the start of the text, to which the views belong. */
struct IniLine {
    enum Kind { Blank, Comment, Heading, Parameter, Junk };

    Kind kind;
    size_t end;     // where its line end begins
    size_t next;    // where the next line begins
    size_t equals;  // the sign, of a parameter
    /** Its section or the one that it opens; empty before the first, none behind a heading that is none. */
    std::optional<std::string_view> section;
    std::string_view key;  // of a parameter
};

/** A text without the byte order mark that some editors put before it. */
std::string_view withoutMark(std::string_view text);

/** The lines of a text without that mark, the first one first. */
std::vector<IniLine> iniLines(std::string_view text);

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
