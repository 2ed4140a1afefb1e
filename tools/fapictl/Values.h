#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/fapictl/Model.h"

// Values as people write them:
//   numbers      12, -3, 0x1f, 0o755; a leading zero alone is refused, since it means octal to some
//   bool         true, false, on, off, 1, 0
//   text         as it is; @FILE for a file's contents, @@ for one that begins with an at sign
//   enumeration  a name or a number
//   bytes        dead, de:ad, or @FILE for a file's contents (@- is standard input)
//   list         1,2,3 or JSON; records and lists in a list are separated by semicolons, or stand in brackets
//   record       field=value,inner.field=value or JSON; fields that are not given are zero or empty. A value
//   in it
//                is a "text" with \n \t \r \\ \" \xNN as escapes, a [list], a {record}, or a word without
//                commas.
//   object       null
// Lists and records are read from a file with @FILE as well. The last elements of an array, except one of
// bytes, may be left out and are zero then.
namespace fapictl {

/**
 * Parses one word. Throws Failure (Usage) whose message names `where`, the type and the word.
 * The result fits the type: it can be given to a method's call.
 */
Json parseValue(const Type& type, std::string_view word, const std::string& where);

/**
 * The same for JSON, whose strings may hold any of the words, except @-. A string that stands for a text is
 * that text.
 */
Json checkValue(const Type& type, const Json& json, const std::string& where);

/** Sets a part of a value: path is ".field", "[2]" or any sequence of them. */
void assign(const Type& type, Json& value, std::string_view path, std::string_view word,
            const std::string& where);

/**
 * Reads a JSON document; nothing when it is none. Throws Failure (Usage) when an object has the same name
 * twice, of which JSON's readers forget one.
 */
std::optional<Json> parseJson(std::string_view text, const std::string& where);

/** A JSON document in a word, in the file of @FILE, or in standard input for -. Throws Failure (Usage). */
Json readJson(std::string_view word, const std::string& where);

/** 0, false, "", no elements; a fixed array has its count of them. */
Json zeroValue(const Type& type);

/** What can be written for the type in a word, for completion: the names of an enumeration, true and false.
 */
std::vector<std::string> choices(const Type& type);

}  // namespace fapictl
