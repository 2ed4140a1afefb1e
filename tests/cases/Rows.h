#pragma once

#include <string>
#include <vector>

// Files of rows: an input, "->", and what comes of it, behind the arrow or on the lines below, indented. A
// line [section] says what the rows below it are for, # begins a comment.
namespace cases {

struct Row {
    std::string place;    // file:line
    std::string section;  // with its brackets
    std::string input;
    std::string expected;
};

/// The rows of a file. Throws std::runtime_error when there are none.
std::vector<Row> rowsOf(const std::string& path);

/// Writes what stands between single quotes as split() reads it.
std::string withoutSingleQuotes(const std::string& input);

}  // namespace cases
