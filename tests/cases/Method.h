#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/fapictl/Model.h"

// Calls as the lines of a case file write them, and answers as they show them.
namespace cases {

/// The words between the blanks of a line. "Quotes" hold blanks, and \n \t \r \0 \xNN \" \\ as in C; (what is
/// in brackets)*3 stands there as often. Both may be part of a word: strName="a b", ("x")*1023, (0102)*8"ff".
/// Throws std::invalid_argument when a quote or bracket has no end, or an escape is none of these.
std::vector<std::string> split(std::string_view line);

/// By the short names that fapictl takes: "System", "read_file". Throws fapictl::Failure when there is none.
const fapictl::Method& findMethod(std::string_view interface, std::string_view method);

/// Calls a method of the object's interface with words as fapictl takes them; returns its results in order,
/// the status as the last. Throws fapictl::Failure when the words do not fit, std::runtime_error when no
/// answer comes.
fapictl::Json call(const fapictl::sp<fapictl::IBase>& object, const fapictl::Method& method,
                   const std::vector<std::string>& words);

/// Numbers as they are, true, false, 'text' with escapes, <hexadecimal bytes>, [1,2],
/// {field=value,field=value}. What repeats itself in texts and bytes is written once:
/// 'ab(x)*1023', <(0102)*16 ff>.
std::string show(const fapictl::Json& value);

/// Several results, with blanks between them.
std::string showAll(const fapictl::Json& results);

}  // namespace cases
