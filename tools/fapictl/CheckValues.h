#pragma once

#include <vector>

#include "tools/fapictl/Model.h"

// What fapictl check calls a method with.
namespace fapictl {

/**
 * The least that there can be of each argument (0, "", no element) or, otherwise, one of it (1, "a", one
 * element), with which many a method gets further.
 */
Json plainArguments(const Method& method, bool one);

/**
 * One set of arguments after the other, without repetition: each argument at its bounds while the others are
 * plain, and all at their bounds at once.
 */
std::vector<Json> boundaryArguments(const Method& method);

/** The arguments in a line, for people: long ones cut. */
std::string shownArguments(const Method& method, const Json& arguments);

/**
 * Whether the method changes a board for good, or may stop it: what it writes survives a restart, or it
 * drives what the board itself depends on.
 */
bool isDangerous(const Method& method);

}  // namespace fapictl
