#include "tests/cases/Rows.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace cases {

std::string withoutSingleQuotes(const std::string& input) {
    std::string out;
    bool inside = false;
    for (const char c : input) {
        inside = inside != (c == '\'');
        out += c == '\''                           ? "\""
               : inside && (c == '"' || c == '\\') ? std::string{'\\', c}
                                                   : std::string(1, c);
    }
    return out;
}

std::vector<Row> rowsOf(const std::string& path) {
    const std::string name = path.substr(path.rfind('/') + 1);
    std::vector<Row> rows;
    std::ifstream file(path);
    std::string section;
    std::string blank;  // lines, which belong to what is expected if more of it follows
    size_t number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        const size_t arrow = (' ' + line + ' ').find(" -> ");
        if (line.empty()) {
            blank += '\n';
        } else if (line[0] == ' ') {
            std::string& expected = rows.at(rows.size() - 1).expected;
            expected += (expected.empty() ? "" : "\n") + blank + line.substr(4);
            blank.clear();
        } else if (line[0] == '[' && line.back() == ']') {
            section = line;
        } else if (line[0] != '#') {
            blank.clear();
            rows.push_back({name + ":" + std::to_string(number), section, line.substr(0, arrow),
                            line.substr(std::min(arrow + 3, line.size()))});
        }
    }
    if (rows.empty()) {
        throw std::runtime_error("no rows in " + path);
    }
    return rows;
}

}  // namespace cases
