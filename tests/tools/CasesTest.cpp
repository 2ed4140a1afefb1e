// Runs the rows of the .cases files. A row is an input, "->", and what comes of it: behind the arrow, or on
// the lines below, indented. The section says what is done with the words of an input, which are those of
// tests/cases/Method.h or stand between 'single quotes' as they are. FILES is a folder; "..." is any text.

#include <fcntl.h>
#include <unistd.h>

#include <ctime>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <set>
#include <sstream>

#include "tests/cases/Method.h"
#include "tests/cases/Rows.h"
#include "tests/support/Shortened.h"
#include "tests/tools/Service.h"
#include "tests/tools/Thing.h"
#include "tools/fapictl/Arguments.h"
#include "tools/fapictl/Complete.h"
#include "tools/fapictl/Display.h"
#include "tools/fapictl/Events.h"
#include "tools/fapictl/FactoryPackage.h"
#include "tools/fapictl/Filter.h"
#include "tools/fapictl/Records.h"
#include "tools/fapictl/Session.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Values.h"

namespace fapictl {
namespace {

using Words = std::vector<std::string>;

const Interface& thing() {
    return findInterface(testPackage(), "Thing");
}

/** The value of the type that an argument of this name has. */
std::string value(const Words& words) {
    for (const Method& method : thing().methods) {
        for (const Field& argument : method.arguments) {
            if (argument.label.name == words.at(0)) {
                const Type& type = *argument.type;
                const Json value = parseValue(type, words.at(1), "x");
                // What the tool prints can be given back to it.
                EXPECT_EQ(checkValue(type, forPrograms(type, value), "x"), value);
                return forPrograms(type, value).dump();
            }
        }
    }
    throw std::invalid_argument(words[0]);
}

/** The arguments of a call, all of which come back from it under their names. */
std::string bind(const Words& words) {
    const Method& method = findMethod(thing(), words.at(0));
    const Json arguments = bindArguments(method, {words.begin() + 1, words.end()});
    const android::sp<test::fapictl::V1_0::Thing> object = new test::fapictl::V1_0::Thing;
    const Reply reply = method.call(*object, arguments);
    EXPECT_EQ(reply.failure, "");
    for (size_t i = 0; i < std::min(arguments.size(), method.results.size()); ++i) {
        if (method.results[i].label.name == method.arguments[i].label.name) {
            EXPECT_EQ(reply.results.at(i), arguments[i]) << method.arguments[i].label.name;
        }
    }
    return cases::showAll(arguments);
}

const Type& recordType() {
    return *findMethod(findInterface(factoryPackage(), "Manager"), "post_event").arguments[1].type;
}

Json record(const Words& words) {
    return parseEventRecord(recordType(), words.at(0), "record 2");
}

/** Records as the event that they make shows them, and which it is made of again. */
std::string records(const Words& words) {
    Event event = {};
    const auto fill = [&](const Words& from) {
        size_t i = 0;
        for (const Json& fields : parseEventRecords(recordType(), from)) {
            const std::vector<uint8_t>& bytes = fields["vecValue"].get_binary();
            event.records.at(i++) = {fields["u32Value"], fields["strValue"], bytes};
        }
        return recordsText(event);
    };
    try {
        const std::string text = fill(words);
        EXPECT_EQ(fill({text}), text);
        return text;
    } catch (const Failure&) {
        return "refused";
    }
}

/** An event with these records, the first of them as its second. */
Event eventWith(const Words& records) {
    const auto time = std::chrono::system_clock::time_point(std::chrono::milliseconds(1700000000007));
    Event event = {time, "sys", 0x10001, {}};
    for (size_t i = 0; i < records.size(); ++i) {
        const Json fields = record({records[i]});
        const std::vector<uint8_t>& bytes = fields["vecValue"].get_binary();
        event.records.at(i + 1) = {fields["u32Value"], fields["strValue"], bytes};
    }
    return event;
}

/** The event for people, then for programs. */
std::string event(const Words& words) {
    const Event event = eventWith(words);
    return shortened(eventLine(12, event) + '\n' + jsonText(eventJson(12, event), false));
}

/** Whether a filter, of --NAME=VALUE, takes the event with the records behind it. */
std::string filter(const Words& words) {
    std::map<std::string, Words> options;
    Words records;
    for (const std::string& word : words) {
        const size_t equals = word.find('=');
        (word[0] == '-' ? options[word.substr(0, equals)] : records)
                .push_back(word.substr(word[0] == '-' ? equals + 1 : 0));
    }
    const EventFilter filter(options["--module"], options["--type"], options["--match"]);
    return filter.takes(eventWith(records)) ? "taken" : "dropped";
}

std::string joined(const Words& words) {
    std::string all;
    for (const std::string& word : words) {
        all += (all.empty() ? "" : " ") + word;
    }
    return all;
}

std::string shown(const Ran& ran) {
    const std::string code = "exit " + std::to_string(static_cast<int>(ran.code));
    if (ran.out.empty() && ran.err.rfind("fapictl: ", 0) == 0 && ran.err.find('\n') + 1 == ran.err.size()) {
        return code + ran.err.substr(7);
    }
    std::string all = ran.out;
    std::istringstream errors(ran.err);
    for (std::string line; std::getline(errors, line);) {
        all += "! " + line + '\n';
    }
    return ran.code == Exit::Success ? all : all + code;
}

/** A report's lines, replayed with the options among them. */
std::string replayed(const Words& words) {
    Words command = {"replay", "-"};
    std::stringstream report;
    for (const std::string& word : words) {
        if (word[0] == '-') {
            command.push_back(word);
        } else {
            report << word << '\n';
        }
    }
    std::streambuf* const before = std::cin.rdbuf(report.rdbuf());
    const Ran ran = fapictl::ran(testPackage(), command);
    std::cin.rdbuf(before);
    std::cin.clear();
    return shown(ran);
}

/** What a session answers to these lines, sorted: answers come as they are there. */
std::string session(const Words& lines) {
    int in[2];
    int out[2];
    EXPECT_EQ(0, pipe2(in, O_CLOEXEC) | pipe2(out, O_CLOEXEC));
    for (const std::string& line : lines) {
        EXPECT_EQ(static_cast<ssize_t>(line.size() + 1),
                  write(in[1], (line + '\n').c_str(), line.size() + 1));
    }
    close(in[1]);
    const Bell never;
    const SessionEnd end = serveSession(testPackage(), {}, in[0], out[1], never);
    EXPECT_FALSE(end.outputGone);
    EXPECT_EQ(end.leftBehind, 0);
    close(in[0]);
    close(out[1]);
    std::string text(1 << 20, '\0');
    const ssize_t count = read(out[0], text.data(), text.size());
    close(out[0]);
    std::istringstream answers(text.substr(0, count > 0 ? static_cast<size_t>(count) : 0));
    std::multiset<std::string> sorted;
    for (std::string line; std::getline(answers, line);) {
        sorted.insert(line);
    }
    std::string all;
    for (const std::string& line : sorted) {
        all += line + '\n';
    }
    return all;
}

const std::map<std::string, std::function<std::string(const Words&)>> kSections = {
        {"[value]", value},
        {"[bind]", bind},
        {"[record]", [](const Words& words) { return cases::showAll(record(words)); }},
        {"[records]", records},
        {"[event]", event},
        {"[filter]", filter},
        {"[interface]", [](const Words& words) { return findInterface(testPackage(), words.at(0)).name; }},
        {"[method]", [](const Words& words) { return findMethod(thing(), words.at(0)).name; }},
        {"[slips]",
         [](const Words& words) { return std::to_string(editDistance(words.at(0), words.at(1))); }},
        {"[nearest]",
         [](const Words& words) {
             return nearest(words.at(0), {words.begin() + 1, words.end()});
         }},
        {"[complete]", [](const Words& words) { return joined(complete(testPackage(), words)); }},
        {"[session]", session},
        {"[thing]", [](const Words& words) { return shown(ran(testPackage(), words)); }},
        {"[replay]", replayed},
        {"[factory]", [](const Words& words) { return shown(ran(factoryPackage(), words)); }},
};

std::string replaced(std::string text, const std::string& what, const std::string& with) {
    for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
        text.replace(at, what.size(), with);
    }
    return text;
}

bool matches(std::string_view text, std::string_view pattern) {
    const size_t gap = pattern.find("...");
    if (gap == std::string_view::npos) {
        return text == pattern;
    }
    if (text.substr(0, gap) != pattern.substr(0, gap)) {
        return false;
    }
    const std::string_view rest = pattern.substr(gap + 3);
    for (size_t at = gap; at <= text.size(); ++at) {
        if (matches(text.substr(at), rest)) {
            return true;
        }
    }
    return false;
}

class Cases : public Service, public testing::WithParamInterface<const char*> {
  protected:
    Cases() {
        setenv("TZ", "UTC-2", 1);
        tzset();
        std::filesystem::create_directory(mFiles);
        std::ofstream(mFiles + "/bytes") << "\n@dead\n";
        std::ofstream(mFiles + "/numbers") << "1\n2\n3\n";
        std::ofstream(mFiles + "/with, comma") << std::string("\0,\xff", 3);
    }
    ~Cases() override { std::filesystem::remove_all(mFiles); }

    std::string outcome(const cases::Row& row) const {
        try {
            const std::string words = cases::withoutSingleQuotes(replaced(row.input, "FILES", mFiles));
            const std::string out = kSections.at(row.section)(cases::split(words));
            return replaced(out.substr(0, out.find_last_not_of('\n') + 1), mFiles, "FILES");
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.code, Exit::Usage);
            return replaced(failure.what(), mFiles, "FILES");
        }
    }

  private:
    const std::string mFiles = sDirectory.path + "/files";
};

TEST_P(Cases, Hold) {
    startAndWait("default");
    for (const cases::Row& row : cases::rowsOf(GetParam())) {
        const std::string got = outcome(row);
        EXPECT_TRUE(matches(got, row.expected)) << row.place << ": " << row.input << "->\n" << got;
    }
}

INSTANTIATE_TEST_SUITE_P(Files, Cases,
                         testing::Values(FAPICTL_CASES "/values.cases", FAPICTL_CASES "/events.cases",
                                         FAPICTL_CASES "/commands.cases", FAPICTL_CASES "/replay.cases",
                                         FAPICTL_CASES "/session.cases", RECORD_CASES));

}  // namespace
}  // namespace fapictl
