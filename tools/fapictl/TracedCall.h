#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/fapictl/Model.h"

// The calls that the service writes down, and the lines in which monitor keeps them for replay.
namespace fapictl {

struct TracedCall {
    const Interface* interface;
    const Method* method;
    /**
     * Both by name, in the trace's own form: bytes as hexadecimal text, texts that are not UTF-8 as {"hex":
     * ...}, an object of the caller's as "object", and what the service keeps to itself as a text in angle
     * brackets.
     */
    Json arguments;
    Json results;  // null when the call delivered none
};

/**
 * Reads a line of either form. Throws Failure (Usage) whose message names `where` when it is none of this
 * package's.
 */
TracedCall parseTracedCall(const Package& package, const Json& line, const std::string& where);

/** "System.check_file" */
std::string titleOf(const TracedCall& call);

/** The status among the results; none when there is no such result, or no results. */
std::optional<int64_t> statusOf(const TracedCall& call);

/** For a line for people, on which long texts, bytes and lists are cut. */
std::string tracedText(const Type& type, const Json& value);
/** All of the values so, with their names: "strPath="/x", bFollow=true". */
std::string tracedText(const std::vector<Field>& fields, const Json& values);

/** For programs: enumerations by name where they have one. */
Json tracedJson(const std::vector<Field>& fields, const Json& values);

/** A call's value in the trace's form. */
Json forTrace(const Type& type, const Json& value);

/** Why the value cannot be sent again: "it takes an object of the caller's"; empty when it can. */
std::string whyNotRepeatable(const Type& type, const Json& value);

/**
 * The value as calls take and deliver it; requires one that is repeatable. Throws Failure (Usage) when it is
 * not of the type.
 */
Json tracedValue(const Type& type, const Json& value, const std::string& where);

}  // namespace fapictl
