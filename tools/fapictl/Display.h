#pragma once

#include <string>
#include <vector>

#include "tools/fapictl/Model.h"
#include "tools/fapictl/Text.h"

// Values as people and programs read them.
namespace fapictl {

/**
 * Adds a value to a table of name, type and value; records and lists of them take a row for each part. The
 * field that is a status has its name beside its number.
 */
void addRows(Table& table, const Field& field, const Json& value, const std::string& status = "");

/** For programs: bytes as hexadecimal text, enumerations by name where they have one. */
Json forPrograms(const Type& type, const Json& value);

/**
 * JSON on one line, or indented; bytes of texts that are not UTF-8 become U+FFFD, since JSON cannot carry
 * them.
 */
std::string jsonText(const Json& json, bool pretty);

}  // namespace fapictl
