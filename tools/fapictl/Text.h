#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

// Plain text for people: escapes, hex dumps and tables.
namespace fapictl {

/**
 * The text with everything escaped that a terminal would act on or could not show: control characters and
 * bytes that are not UTF-8 as \n, \t, \r or \xNN, and the backslash itself.
 */
std::string escaped(std::string_view text);

/** escaped() between double quotes, the quotes inside escaped too. */
std::string inQuotes(std::string_view text);

/** Whether it is UTF-8 that can be shown, line ends and tabs among it. */
bool isReadable(std::string_view text);

/**
 * Takes such a quoted text from the front of `rest`, which starts with the quote. Throws Failure (Usage)
 * whose message names `where`.
 */
std::string takeQuoted(std::string_view& rest, const std::string& where);

/** "deadbeef" */
std::string toHex(const std::vector<uint8_t>& bytes);

/** Both for a line that has more to show: what is long is cut, and its whole length given. */
std::string quotedInShort(std::string_view text);
std::string toHexInShort(const std::vector<uint8_t>& bytes);

/** Lines of sixteen bytes: offset, hexadecimal, printable characters. */
std::vector<std::string> hexDump(const std::vector<uint8_t>& bytes);

/** The text in lines of at most the width, broken between words; its own line ends stay. */
std::vector<std::string> wrapped(std::string_view text, size_t width);

/** Columns as wide as their widest cell; a cell may have several lines. */
class Table {
  public:
    explicit Table(std::vector<std::string> header) : mHeader(std::move(header)) {}

    void row(std::vector<std::string> cells);
    /** A row whose last cell has several lines. */
    void row(std::vector<std::string> cells, const std::vector<std::string>& lines);
    bool empty() const { return mRows.empty(); }
    void print(std::ostream& out, bool legend, const std::string& indent = "") const;

  private:
    std::vector<std::string> mHeader;
    std::vector<std::vector<std::string>> mRows;
};

}  // namespace fapictl
