#pragma once

#include <string>
#include <vector>

#include "tools/fapictl/Model.h"

namespace fapictl {

/**
 * The words of a command line as a method's arguments: positional, or name=value, or name.part=value for a
 * part of a record or list, in any mixture. Positional words fill the arguments that are not named, in order.
 * A word that starts with an argument's name and '=' always names it.
 *
 * Throws Failure (Usage) when an argument is missing, superfluous, given twice or not of its type.
 */
Json bindArguments(const Method& method, const std::vector<std::string>& words);

/**
 * The same for JSON: an object with the arguments by name, in any letter case, or an array of them in order.
 * The values are those of JSON, or any of the words in a string; a text is taken as it is.
 */
Json bindArguments(const Method& method, const Json& given);

/** "argument strName", as messages call it. */
std::string argumentTitle(const Field& argument);

}  // namespace fapictl
