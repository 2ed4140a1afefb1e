#include "tools/fapictl/Filter.h"

#include <regex.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Records.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Values.h"

namespace fapictl {
namespace {

const Type kNumber = {Type::Kind::Integer, "uint32_t", 0, UINT32_MAX};
const Type kByte = {Type::Kind::Integer, "uint8_t", 0, UINT8_MAX};
const Type kBytes = {Type::Kind::List, "vec<uint8_t>", 0, 0, {}, {}, &kByte};

std::string findModule(const std::string& word) {
    const std::vector<std::string>& all = eventModules();
    const auto at = std::find_if(all.begin(), all.end(),
                                 [&](const std::string& one) { return equalIgnoringCase(one, word); });
    if (at == all.end()) {
        const std::string near = suggestion(word, all);
        throw Failure(Exit::Usage,
                      "no module " + inQuotes(word) + (near.empty() ? "; there are " + listed(all) : near));
    }
    return *at;
}

/**
 * A regular expression of the platform's C library: it goes through a text of any length, where std::regex
 * calls itself for every character and ends the process with a long one.
 */
class Pattern {
  public:
    explicit Pattern(const std::string& text, const std::string& where) {
        if (text.find('\0') != std::string::npos) {
            throw Failure(Exit::Usage, where + ": a pattern holds no NUL");
        }
        const int error = regcomp(&mCompiled, text.c_str(), REG_EXTENDED | REG_NOSUB);
        if (error != 0) {
            char reason[200];
            regerror(error, &mCompiled, reason, sizeof reason);
            throw Failure(Exit::Usage, where + ": no pattern " + inQuotes(text) + ": " + reason);
        }
    }
    ~Pattern() { regfree(&mCompiled); }
    Pattern(const Pattern&) = delete;

    /** A text for which there is not enough memory is found, too: better shown than lost. */
    bool isIn(const std::string& text) const {
        regmatch_t range = {0, static_cast<regoff_t>(text.size())};
        return regexec(&mCompiled, text.c_str(), 0, &range, REG_STARTEND) != REG_NOMATCH;
    }

  private:
    regex_t mCompiled;
};

std::function<bool(const Event::Record&)> condition(const RecordPart& part, const std::string& where) {
    const std::string place = where + ", " + nameOf(part.key);
    if (part.pattern) {
        return [pattern = std::make_shared<const Pattern>(part.value, where)](const Event::Record& record) {
            return pattern->isIn(record.text);
        };
    }
    switch (part.key) {
        case RecordPart::Key::Value:
            return [value = parseValue(kNumber, part.value, place).get<uint32_t>()](
                           const Event::Record& record) { return record.value == value; };
        case RecordPart::Key::Bytes:
            return [bytes = std::vector<uint8_t>(parseValue(kBytes, part.value, place).get_binary())](
                           const Event::Record& record) { return record.bytes == bytes; };
        case RecordPart::Key::Text:
            break;
    }
    return [text = part.value](const Event::Record& record) { return record.text == text; };
}

}  // namespace

EventFilter::EventFilter(const std::vector<std::string>& modules, const std::vector<std::string>& types,
                         const std::vector<std::string>& matches) {
    for (const std::string& module : modules) {
        mModules.push_back(findModule(module));
    }
    for (const std::string& type : types) {
        const size_t slash = type.find('/');
        const auto number = parseValue(kNumber, type.substr(0, slash), "event type").get<uint32_t>();
        uint32_t mask = UINT32_MAX;
        if (slash != std::string::npos) {
            mask = parseValue(kNumber, type.substr(slash + 1), "mask of an event type").get<uint32_t>();
        }
        if ((number & ~mask) != 0) {
            throw Failure(Exit::Usage,
                          "no type is " + inQuotes(type) + ": the number has bits that the mask has not");
        }
        mTypes.push_back({number, mask});
    }
    for (const std::string& match : matches) {
        const std::string where = "match " + inQuotes(match);
        Match conditions;
        for (const RecordPart& part : splitRecord(match, true, where)) {
            conditions.push_back(condition(part, where));
        }
        if (conditions.empty()) {
            throw Failure(Exit::Usage, where + ": every record has that");
        }
        mMatches.push_back(std::move(conditions));
    }
}

bool EventFilter::takes(const Event& event) const {
    const auto has = [&](const Match& match) {
        return std::any_of(event.records.begin(), event.records.end(), [&](const Event::Record& record) {
            return std::all_of(match.begin(), match.end(),
                               [&](const auto& condition) { return condition(record); });
        });
    };
    return (mModules.empty() ||
            std::find(mModules.begin(), mModules.end(), event.module) != mModules.end()) &&
           (mTypes.empty() ||
            std::any_of(mTypes.begin(), mTypes.end(),
                        [&](const TypeMask& type) { return (event.type & type.mask) == type.number; })) &&
           std::all_of(mMatches.begin(), mMatches.end(), has);
}

}  // namespace fapictl
