#include "bench/common/Table.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>

namespace bench {

namespace {

std::string number(double value, int decimals, const std::string& unit) {
    char text[64];
    std::snprintf(text, sizeof(text), "%.*f%s", decimals, value, unit.c_str());
    return text;
}

std::string inUnit(double value, Unit unit) {
    const double size = std::abs(value);
    switch (unit) {
        case Unit::Nanoseconds:
            if (size >= 1e6) {
                return number(value / 1e6, 2, " ms");
            }
            return size >= 1e3 ? number(value / 1e3, 2, " µs") : number(value, 1, " ns");
        case Unit::CallsPerSecond:
            return number(value, 0, " calls/s");
        case Unit::Bytes:
            return size >= 1024 * 1024 ? number(value / (1024 * 1024), 2, " MiB")
                                       : number(value / 1024, 0, " KiB");
        case Unit::Count:
            break;
    }
    return number(value, 2, "");
}

std::string inUnitOrNone(double value, Unit unit) {
    return std::isnan(value) ? "-" : inUnit(value, unit);
}

/** How ours stands to the baseline, in the limit's terms. */
std::string comparison(const Row& row) {
    if (row.limit.kind == Limit::Kind::MoreAtMost) {
        return (row.difference < 0 ? "" : "+") + inUnitOrNone(row.difference, row.unit);
    }
    return std::isfinite(row.ratio) ? number(row.ratio, 2, " x") : "-";
}

std::string limitText(const Row& row) {
    const double value = row.limit.value;
    switch (row.limit.kind) {
        case Limit::Kind::TimesAtMost:
            return "<= " + number(value, 2, " x");
        case Limit::Kind::TimesAtLeast:
            return ">= " + number(value, 2, " x");
        case Limit::Kind::MoreAtMost:
            return "<= +" + inUnit(value, row.unit);
        case Limit::Kind::AtMost:
            return "<= " + inUnit(value, row.unit);
        case Limit::Kind::None:
            break;
    }
    return "-";
}

std::string verdict(const Row& row) {
    if (row.limit.kind == Limit::Kind::None) {
        return "-";
    }
    return row.ok() ? "ok" : "EXCEEDED";
}

/** Columns that a terminal gives to a text in UTF-8. */
size_t width(const std::string& text) {
    return static_cast<size_t>(
            std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xc0) != 0x80; }));
}

void print(const Table& table) {
    using Line = std::array<std::string, 6>;
    std::vector<Line> lines{{"workload", "baseline", "ours", "ratio", "limit", "ok?"}};
    for (const Row& row : table.rows) {
        lines.push_back({row.workload, inUnitOrNone(row.baseline, row.unit), inUnit(row.ours, row.unit),
                         comparison(row), limitText(row), verdict(row)});
    }
    std::array<size_t, 6> widths{};
    for (const Line& line : lines) {
        for (size_t i = 0; i < line.size(); ++i) {
            widths[i] = std::max(widths[i], width(line[i]));
        }
    }
    std::cout << table.heading << "\n";
    for (const Line& line : lines) {
        for (size_t i = 0; i < line.size(); ++i) {
            const std::string gap(widths[i] - width(line[i]), ' ');
            const bool text = i == 0 || i == line.size() - 1;
            std::cout << (i == 0 ? "  " : "   ") << (text ? line[i] + gap : gap + line[i]);
        }
        std::cout << "\n";
    }
    std::cout << "\n" << std::flush;
}

nlohmann::json toJson(const Row& row) {
    static const char* const kUnits[] = {"ns", "calls/s", "bytes", "count"};
    static const char* const kLimits[] = {"none", "times-at-most", "times-at-least", "more-at-most",
                                          "at-most"};
    nlohmann::json json{
            {"workload", row.workload}, {"unit", kUnits[static_cast<int>(row.unit)]}, {"ours", row.ours}};
    if (!std::isnan(row.baseline)) {
        json["baseline"] = row.baseline;
        json["difference"] = row.difference;
    }
    if (std::isfinite(row.ratio)) {
        json["ratio"] = row.ratio;
    }
    if (row.limit.kind != Limit::Kind::None) {
        json["limit"] = {{"kind", kLimits[static_cast<int>(row.limit.kind)]}, {"value", row.limit.value}};
        json["ok"] = row.ok();
    }
    return json;
}

}  // namespace

bool Row::ok() const {
    switch (limit.kind) {
        case Limit::Kind::TimesAtMost:
            return ratio <= limit.value;
        case Limit::Kind::TimesAtLeast:
            return ratio >= limit.value;
        case Limit::Kind::MoreAtMost:
            return difference <= limit.value;
        case Limit::Kind::AtMost:
            return ours <= limit.value;
        case Limit::Kind::None:
            break;
    }
    return true;
}

int report(const std::vector<Table>& tables, const Options& options) {
    bool ok = true;
    nlohmann::json json = nlohmann::json::array();
    for (const Table& table : tables) {
        if (table.rows.empty()) {
            continue;
        }
        nlohmann::json rows = nlohmann::json::array();
        for (const Row& row : table.rows) {
            ok = ok && row.ok();
            rows.push_back(toJson(row));
        }
        json.push_back({{"heading", table.heading}, {"rows", rows}});
        if (!options.json) {
            print(table);
        }
    }
    if (options.json) {
        std::cout << json.dump(2) << "\n";
    }
    return options.check && !ok ? 1 : 0;
}

}  // namespace bench
