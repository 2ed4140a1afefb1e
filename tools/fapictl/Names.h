#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/fapictl/Model.h"

// How people may write the names of interfaces and methods, in any letter case:
//   vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApiSystem, IZvtTvFApiSystem, ZvtTvFApiSystem, System,
//   and sys, the module's name in those of its methods
//   a_hidl_a_zvttvfapi_sys_read_file, sys_read_file, read_file
namespace fapictl {

/** "System" for IZvtTvFApiSystem. */
std::string shortName(const Interface& interface);

/** The shortest form of the method's name that its interface understands. */
std::string shortName(const Interface& interface, const Method& method);

/** Every form of the name, the longest first. */
std::vector<std::string> forms(const Interface& interface);
std::vector<std::string> forms(const Method& method);

/** Throws Failure (Usage) with the nearest name when there is none, or the candidates when there are several.
 */
const Interface& findInterface(const Package& package, std::string_view name);
const Method& findMethod(const Interface& interface, std::string_view name);

/** As findInterface, but a name with a * or ? in it selects every match. */
std::vector<const Interface*> selectInterfaces(const Package& package, std::string_view pattern);
/** Every method that the name or pattern fits; none is no failure. */
std::vector<const Method*> matchMethods(const Interface& interface, std::string_view pattern);
bool isPattern(std::string_view name);

bool equalIgnoringCase(std::string_view a, std::string_view b);

/** Insertions, deletions, replacements and swaps of neighbours that turn one into the other, in any case. */
size_t editDistance(std::string_view a, std::string_view b);

/** The candidate nearest to the name, or empty when none is near enough to be what was meant. */
std::string nearest(std::string_view name, const std::vector<std::string>& candidates);

/** The nearest candidate as "; did you mean "X"?", or empty. */
std::string suggestion(std::string_view name, const std::vector<std::string>& candidates);

/** "A, B, C" */
std::string listed(const std::vector<std::string>& names);

/** All candidates when they are few, as "; there are A, B", or the suggestion. */
std::string choiceOf(std::string_view name, const std::vector<std::string>& candidates);

}  // namespace fapictl
