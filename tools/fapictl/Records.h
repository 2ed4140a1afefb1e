#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/fapictl/Events.h"
#include "tools/fapictl/Model.h"

// Payload records of events as people write them: value=7 text="two\nlines" bytes=de:ad with any of the three
// left out, or - for an empty one. Commas or blanks separate the parts. A text without quotes runs to the
// next KEY= or to the end, any other value to the next separator; between double quotes everything may stand,
// with the escapes that eventLine() writes. Several records stand between bars with blanks around them, as in
// what eventLine() shows, all of which may be written but what it has cut; a ("text") behind bytes says
// nothing.
namespace fapictl {

/** One KEY=VALUE, or text~VALUE; the value is without its quotes. */
struct RecordPart {
    enum class Key { Value, Text, Bytes };

    Key key = Key::Value;
    bool pattern = false;  // ~ instead of =
    std::string value;
};

const char* nameOf(RecordPart::Key key);

/**
 * Takes a record apart. Throws Failure (Usage) whose message names `where`.
 *
 * @param patterns whether there may be a text~VALUE
 */
std::vector<RecordPart> splitRecord(std::string_view record, bool patterns, const std::string& where);

/** The records between the bars; a text without a bar is one. A bar in quotes separates nothing. */
std::vector<std::string_view> splitRecords(std::string_view text);

/** Parses a record into a value of the interface's record type. Throws Failure (Usage). */
Json parseEventRecord(const Type& type, std::string_view word, const std::string& where);

/** Parses the records of an event, one or several in a word, into as many values as an event has. */
Json parseEventRecords(const Type& type, const std::vector<std::string>& words);

}  // namespace fapictl
