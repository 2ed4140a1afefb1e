// What people and programs give the command-line tool: words as values of every type, JSON, whole command
// lines, and messages of a session. No service is registered, so that nothing is called.

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>

#include "fuzz/Choices.h"
#include "fuzz/Input.h"
#include "tools/fapictl/Arguments.h"
#include "tools/fapictl/CommandLine.h"
#include "tools/fapictl/Dispatcher.h"
#include "tools/fapictl/FactoryPackage.h"
#include "tools/fapictl/Values.h"

using fapictl::Failure;
using fapictl::Json;
using fapictl::Method;
using fapictl::Type;

namespace {

/** Every method of the package. */
const std::vector<const Method*>& methods() {
    static const auto& sMethods = *new std::vector<const Method*>([] {
        std::vector<const Method*> all;
        for (const fapictl::Interface& interface : fapictl::factoryPackage().interfaces) {
            for (const Method& method : interface.methods) {
                all.push_back(&method);
            }
        }
        return all;
    }());
    return sMethods;
}

/** Whether a call could take the value as it is. */
bool fits(const Type& type, const Json& value) {
    switch (type.kind) {
        case Type::Kind::Boolean:
            return value.is_boolean();
        case Type::Kind::Integer:
        case Type::Kind::Enumeration:
            return value.is_number_integer() && (!value.is_number_unsigned() && value.get<int64_t>() < 0
                                                         ? value.get<int64_t>() >= type.minimum
                                                         : value.get<uint64_t>() <= type.maximum);
        case Type::Kind::Text:
            return value.is_string();
        case Type::Kind::Record:
            return value.size() == type.fields.size() &&
                   std::all_of(type.fields.begin(), type.fields.end(), [&](const fapictl::Field& field) {
                       return fits(*field.type, value.at(field.label.name));
                   });
        case Type::Kind::List: {
            const size_t count = type.isBytes() ? value.get_binary().size() : value.size();
            return (!type.count || *type.count == count) &&
                   (type.isBytes() || std::all_of(value.begin(), value.end(), [&](const Json& element) {
                        return fits(*type.element, element);
                    }));
        }
        case Type::Kind::Interface:
            return value.is_null();
    }
    return false;
}

bool fit(const Method& method, const Json& values) {
    bool all = values.size() == method.arguments.size();
    for (size_t i = 0; all && i < values.size(); ++i) {
        all = fits(*method.arguments[i].type, values[i]);
    }
    return all;
}

void bind(const Method& method, const std::vector<std::string>& words) {
    try {
        fuzz::require(fit(method, fapictl::bindArguments(method, words)));
    } catch (const Failure& failure) {
        fuzz::require(failure.code == fapictl::Exit::Usage && failure.what()[0] != '\0');
    }
}

void bindJson(const Method& method, const std::string& text) {
    try {
        if (const auto json = fapictl::parseJson(text, "it")) {
            fuzz::require(fit(method, fapictl::bindArguments(method, *json)));
        }
    } catch (const Failure& failure) {
        fuzz::require(failure.code == fapictl::Exit::Usage);
    }
}

/** What would wait, run a program or a library, or leave this folder. */
bool isTried(const std::vector<std::string>& words) {
    static const std::set<std::string> sNot = {"wait",  "watch",     "monitor", "session", "serve",
                                               "check", "--timeout", "--ready", "--open",  "-"};
    for (const std::string& word : words) {
        if (sNot.count(word.substr(0, word.find('='))) != 0 || word.find('/') != std::string::npos ||
            word.find("@-") != std::string::npos || word.find("=-") != std::string::npos) {
            return false;
        }
    }
    return true;
}

bool isTried(const Json& json) {
    if (json.is_string()) {
        const auto& text = json.get_ref<const std::string&>();
        return text != "wait" && text.find('@') == std::string::npos;
    }
    for (const auto& [name, value] : json.items()) {
        if (name == "timeout" ||
            (value.is_primitive() ? value.is_string() && !isTried(value) : !isTried(value))) {
            return false;
        }
    }
    return true;
}

/** Whatever a message is, it has an answer or wants none, and the answer is a message. */
void serve(const std::string& message) {
    static fapictl::Dispatcher& sDispatcher =
            *new fapictl::Dispatcher(fapictl::factoryPackage(), {}, [](const std::string&) {});
    const Json json = Json::parse(message, nullptr, false);
    if (!json.is_discarded() && !isTried(json)) {
        return;
    }
    int answers = 0;
    sDispatcher.serve(message, [&](const std::string& answer) {
        ++answers;
        fuzz::require(answer.empty() || Json::accept(answer));
    });
    fuzz::require(answers == 1);
}

std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words;
    std::istringstream lines(text);
    for (std::string line; words.size() < 64 && std::getline(lines, line);) {
        words.push_back(line);
    }
    return words;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    static std::string& sFolder =
            *new std::string(std::filesystem::temp_directory_path() / "fuzz-tool-XXXXXX");
    fuzz::require(mkdtemp(sFolder.data()) != nullptr && chdir(sFolder.c_str()) == 0);
    setenv("HIDL_RUNTIME_DIR", sFolder.c_str(), 1);
    std::atexit([] {
        std::error_code ignored;
        std::filesystem::remove_all(sFolder, ignored);
    });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Choices choices(data, size);
    const uint8_t what = choices.byte();
    const Method& method = *methods()[choices.byte() % methods().size()];
    const std::string text = choices.rest();
    const std::vector<std::string> words = wordsOf(text);
    switch (what % 4) {
        case 0:
            if (text.find('@') == std::string::npos) {
                bind(method, words);
            }
            break;
        case 1:
            if (text.find('@') == std::string::npos) {
                bindJson(method, text);
            }
            break;
        case 2:
            if (isTried(words)) {
                std::ostringstream out;
                std::ostringstream err;
                const fapictl::Exit exit = fapictl::run(fapictl::factoryPackage(), words, out, err);
                fuzz::require(exit == fapictl::Exit::Success || !err.str().empty());
            }
            break;
        case 3:
            serve(text);
            break;
    }
    return 0;
}
