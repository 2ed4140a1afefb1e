#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/fapictl/Model.h"

// Values as people write them:
//   numbers      12, -3, 0x1f, 0o755; a leading zero alone is refused, since it means octal to some
//   bool         true, false, on, off, 1, 0
//   text         as it is
//   enumeration  a name or a number
//   bytes        dead, de:ad, or @FILE for a file's contents (@- is standard input)
//   list         1,2,3 or JSON; records and lists in a list are separated by semicolons
//   record       field=value,inner.field=value or JSON; fields that are not given are zero or empty
//   object       null
// Lists and records are read from a file with @FILE as well.
namespace fapictl {

/**
 * Parses one word. Throws Failure (Usage) whose message names `where`, the type and the word.
 * The result fits the type: it can be given to a method's call.
 */
Json parseValue(const Type& type, std::string_view word, const std::string& where);

/** The same for JSON, whose strings may hold any of the words. */
Json checkValue(const Type& type, const Json& json, const std::string& where);

/** Sets a part of a value: path is ".field", "[2]" or any sequence of them. */
void assign(const Type& type, Json& value, std::string_view path, std::string_view word,
            const std::string& where);

/** 0, false, "", no elements; a fixed array has its count of them. */
Json zeroValue(const Type& type);

/** What can be written for the type in a word, for completion: the names of an enumeration, true and false.
 */
std::vector<std::string> choices(const Type& type);

}  // namespace fapictl
