#include "tools/fapictl/Text.h"

#include <algorithm>
#include <charconv>

#include "tools/fapictl/Failure.h"

namespace fapictl {
namespace {

constexpr char kDigits[] = "0123456789abcdef";

/** What is shown of each in short; both come to about 64 columns. */
constexpr size_t kBytesInShort = 32;
constexpr size_t kTextInShort = 64;

/** Bytes of the UTF-8 character at the start of the text; 0 when there is none, or it is not printable. */
size_t characterLength(std::string_view text) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    size_t length = 1;
    uint32_t code = byte(0);
    if (code < 0x80) {
        return code >= 0x20 && code != 0x7f ? 1 : 0;
    }
    if ((code & 0xe0) == 0xc0) {
        length = 2;
        code &= 0x1f;
    } else if ((code & 0xf0) == 0xe0) {
        length = 3;
        code &= 0x0f;
    } else if ((code & 0xf8) == 0xf0) {
        length = 4;
        code &= 0x07;
    } else {
        return 0;
    }
    if (text.size() < length) {
        return 0;
    }
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xc0) != 0x80) {
            return 0;
        }
        code = code << 6 | (byte(i) & 0x3f);
    }
    constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = code >= 0xd800 && code < 0xe000;
    const bool control = code >= 0x80 && code < 0xa0;
    // Marks that reorder the line would let a text pretend to be another.
    const bool direction = (code >= 0x202a && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
    return code < kSmallest[length] || code > 0x10ffff || surrogate || control || direction ? 0 : length;
}

std::string escapedWith(std::string_view text, bool quotes) {
    std::string out;
    while (!text.empty()) {
        const size_t length = characterLength(text);
        const char c = text[0];
        if (c == '\\' || (quotes && c == '"')) {
            out += {'\\', c};
        } else if (length > 0) {
            out += text.substr(0, length);
        } else if (c == '\n' || c == '\t' || c == '\r') {
            out += {'\\', c == '\n' ? 'n' : c == '\t' ? 't' : 'r'};
        } else {
            const auto byte = static_cast<unsigned char>(c);
            out += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
        }
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return out;
}

std::string length(size_t size) {
    return "…(" + std::to_string(size) + " bytes)";
}

/** Columns that the text takes, as near as makes no difference here: one per character. */
size_t width(const std::string& text) {
    return static_cast<size_t>(
            std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xc0) != 0x80; }));
}

}  // namespace

std::string escaped(std::string_view text) {
    return escapedWith(text, false);
}

std::string inQuotes(std::string_view text) {
    return '"' + escapedWith(text, true) + '"';
}

bool isReadable(std::string_view text) {
    while (!text.empty()) {
        const size_t length = characterLength(text);
        if (length == 0 && std::string_view("\n\r\t").find(text[0]) == std::string_view::npos) {
            return false;
        }
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return true;
}

std::string takeQuoted(std::string_view& rest, const std::string& where) {
    std::string out;
    for (size_t i = 1; i < rest.size(); ++i) {
        const char c = rest[i];
        if (c == '"') {
            rest.remove_prefix(i + 1);
            return out;
        }
        if (c != '\\') {
            out += c;
            continue;
        }
        const std::string_view escape = rest.substr(++i, 3);
        constexpr std::string_view kNames = "ntr\\\"";
        const size_t name = escape.empty() ? std::string_view::npos : kNames.find(escape[0]);
        uint8_t byte = 0;
        if (name != std::string_view::npos) {
            out += "\n\t\r\\\""[name];
        } else if (escape.size() == 3 && escape[0] == 'x' &&
                   std::from_chars(escape.data() + 1, escape.data() + 3, byte, 16).ptr == escape.data() + 3) {
            out += static_cast<char>(byte);
            i += 2;
        } else {
            throw Failure(Exit::Usage, where + ": no escape \\" + escaped(escape.substr(0, 1)) +
                                               R"(; there are \n \t \r \\ \" and \xNN)");
        }
    }
    throw Failure(Exit::Usage, where + ": the closing quote is missing");
}

std::string toHex(const std::vector<uint8_t>& bytes) {
    std::string out;
    out.reserve(2 * bytes.size());
    for (const uint8_t byte : bytes) {
        out += kDigits[byte >> 4];
        out += kDigits[byte & 15];
    }
    return out;
}

std::string quotedInShort(std::string_view text) {
    size_t shown = text.size();
    if (shown > kTextInShort) {
        shown = kTextInShort;
        // A character is not cut in two; one has at most three bytes behind its first.
        for (int i = 0; i < 3 && (text[shown] & 0xc0) == 0x80; ++i) {
            --shown;
        }
    }
    return inQuotes(text.substr(0, shown)) + (shown == text.size() ? "" : length(text.size()));
}

std::string toHexInShort(const std::vector<uint8_t>& bytes) {
    const size_t shown = std::min(bytes.size(), kBytesInShort);
    return toHex({bytes.data(), bytes.data() + shown}) + (shown == bytes.size() ? "" : length(bytes.size()));
}

std::vector<std::string> hexDump(const std::vector<uint8_t>& bytes) {
    constexpr size_t kPerLine = 16;
    std::vector<std::string> lines;
    for (size_t start = 0; start < bytes.size(); start += kPerLine) {
        const size_t end = std::min(start + kPerLine, bytes.size());
        std::string line;
        for (int shift = 28; shift >= 0; shift -= 4) {
            line += kDigits[start >> shift & 15];
        }
        std::string characters;
        for (size_t i = start; i < start + kPerLine; ++i) {
            line += i % 8 == 0 ? "  " : " ";
            if (i < end) {
                line += {kDigits[bytes[i] >> 4], kDigits[bytes[i] & 15]};
                characters += bytes[i] >= 0x20 && bytes[i] < 0x7f ? static_cast<char>(bytes[i]) : '.';
            } else {
                line += "  ";
            }
        }
        lines.push_back(line + "  |" + characters + "|");
    }
    return lines;
}

std::vector<std::string> wrapped(std::string_view text, size_t limit) {
    std::vector<std::string> lines;
    size_t start = 0;
    while (start <= text.size()) {
        const size_t end = std::min(text.find('\n', start), text.size());
        std::string line;
        size_t word = start;
        while (word < end) {
            const size_t space = std::min(text.find(' ', word), end);
            const std::string next(text.substr(word, space - word));
            if (!line.empty() && width(line) + 1 + width(next) > limit) {
                lines.push_back(line);
                line.clear();
            }
            line += (line.empty() ? "" : " ") + next;
            word = space + 1;
        }
        lines.push_back(line);
        start = end + 1;
    }
    return lines;
}

void Table::row(std::vector<std::string> cells) {
    cells.resize(mHeader.size());
    mRows.push_back(std::move(cells));
}

void Table::row(std::vector<std::string> cells, const std::vector<std::string>& lines) {
    cells.resize(mHeader.size() - 1);
    for (const std::string& line : lines) {
        std::vector<std::string> one = cells;
        one.push_back(line);
        row(std::move(one));
        std::fill(cells.begin(), cells.end(), "");
    }
    if (lines.empty()) {
        row(std::move(cells));
    }
}

void Table::print(std::ostream& out, bool legend, const std::string& indent) const {
    std::vector<const std::vector<std::string>*> rows;
    if (legend) {
        rows.push_back(&mHeader);
    }
    for (const auto& row : mRows) {
        rows.push_back(&row);
    }
    std::vector<size_t> widths(mHeader.size());
    for (const auto* row : rows) {
        for (size_t i = 0; i < row->size(); ++i) {
            widths[i] = std::max(widths[i], width((*row)[i]));
        }
    }
    for (const auto* row : rows) {
        std::string line = indent;
        for (size_t i = 0; i < row->size(); ++i) {
            line += (*row)[i];
            line.append(widths[i] - width((*row)[i]) + 2, ' ');
        }
        out << line.erase(line.find_last_not_of(' ') + 1) << '\n';
    }
}

}  // namespace fapictl
