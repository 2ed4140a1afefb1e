#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// One case of a .cases file: a call, and what happens during it, one event a line and in order.
///
///     get_ber -> get_ber(*) writes ps32Ber=7
///         E (hild)s32Ber = 7
///         = 7 $s
///         E a_zvttvfapi_inpsrc_get_ber $s
///
/// The line at the margin has the method and its arguments, as fapictl takes them, with quotes and
/// repetitions as in tests/cases/Method.h; behind the arrow stands the first event. Events are
///
/// - a call of the library, as FakeChipLayer shows it, without a_zvttvfapi_<module>_; behind it what the
/// library
///   "writes" into its outputs (numbers, texts, <hexadecimal bytes>, in which 01..0f is a run) and the
///   statuses that it "returns": one run of the case each, with 0, -7 and -5 if none are given;
/// - a log line's priority and text, its end cut off by "...". "outcome x" is "D x OK!\n" or "E x Fail!\n",
/// "error
///   outcome x" the same with E for both; "each <bytes>: line" one line for each byte, with its number as $i,
///   its value as $b in hexadecimal and $d in decimal;
/// - "= results", the delivery; behind all others if it is not given, with the status alone;
/// - ?, the question for readiness; ahead of all others if it is not given. What comes before it happens
/// while the
///   library is not ready too, and nothing else does but the answer: zeros and -5, or what "unready" says.
///
/// $s is the status, $x the same in hexadecimal, $m the method's whole name. A case that is "unguarded" asks
/// nothing and goes as it says, ready or not. "refused 2 of 9" refuses the second allocation, which is to be
/// of 9 bytes (0: nothing may be allocated).
struct Case {
    int line = 0;
    std::vector<std::string> words;  // the method, and the arguments
    std::vector<std::string> events;
    std::map<std::string, std::string> writes;
    std::vector<int32_t> statuses = {0, -7, -5};
    std::optional<std::string> unready;  // what is answered then, if it is not zeros and -5
    bool guarded = true;
    int refused = 0;  // the allocation of this number; 0 for none
    size_t refusedBytes = 0;

    /// What happens when the library returns the status.
    std::vector<std::string> expected(const std::string& method, int32_t status) const;
};

/// Throws std::invalid_argument when the file is none.
std::vector<Case> readCases(const std::string& path);
