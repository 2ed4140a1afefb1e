#include "tests/cases/Method.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "tests/support/Shortened.h"
#include "tools/fapictl/Arguments.h"
#include "tools/fapictl/FactoryPackage.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"

namespace cases {
namespace {

using fapictl::Json;

/// Reads a line from its start; what is left is what has not been read.
class Reader {
  public:
    explicit Reader(std::string_view line) : mLeft(line) {}

    std::vector<std::string> words() {
        std::vector<std::string> words;
        while (skipBlanks()) {
            words.push_back(until(" "));
        }
        return words;
    }

  private:
    bool skipBlanks() {
        mLeft.remove_prefix(std::min(mLeft.find_first_not_of(' '), mLeft.size()));
        return !mLeft.empty();
    }
    char take() {
        if (mLeft.empty()) {
            throw std::invalid_argument("a quote or bracket has no end");
        }
        const char c = mLeft[0];
        mLeft.remove_prefix(1);
        return c;
    }
    template <class Number>
    Number number(size_t most, int base) {
        Number value = 0;
        const char* const end = mLeft.data() + std::min(most, mLeft.size());
        const auto read = std::from_chars(mLeft.data(), end, value, base);
        if (read.ec != std::errc() || (base == 16 && read.ptr != mLeft.data() + most)) {
            throw std::invalid_argument("no number at: " + std::string(mLeft));
        }
        mLeft.remove_prefix(static_cast<size_t>(read.ptr - mLeft.data()));
        return value;
    }

    /// Up to one of these characters, which stays, or to the end of the line.
    std::string until(std::string_view ends) {
        std::string word;
        while (!mLeft.empty() && ends.find(mLeft[0]) == std::string_view::npos) {
            const char c = take();
            if (c == '"') {
                word += quoted();
            } else if (c == '(') {
                word += repeated();
            } else {
                word += c;
            }
        }
        return word;
    }
    std::string quoted() {
        std::string text;
        for (char c; (c = take()) != '"';) {
            text += c == '\\' ? escape(take()) : c;
        }
        return text;
    }
    char escape(char c) {
        constexpr std::string_view kNames = "ntr0\"\\", kMeant{"\n\t\r\0\"\\", 6};
        if (c == 'x') {
            return static_cast<char>(number<unsigned char>(2, 16));
        }
        const size_t at = kNames.find(c);
        if (at == std::string_view::npos) {
            throw std::invalid_argument(std::string("no such escape: \\") + c);
        }
        return kMeant[at];
    }
    std::string repeated() {
        const std::string part = until(")");
        take();
        if (take() != '*') {
            throw std::invalid_argument("no *N behind (" + part + ")");
        }
        std::string all;
        for (size_t count = number<size_t>(mLeft.size(), 10); count > 0; --count) {
            all += part;
        }
        return all;
    }

    std::string_view mLeft;
};

std::string showEach(const Json& list, const char* separator) {
    std::string all;
    for (const auto& [name, value] : list.items()) {
        all += (all.empty() ? "" : separator) + (list.is_object() ? name + '=' : "") + show(value);
    }
    return all;
}

}  // namespace

std::vector<std::string> split(std::string_view line) {
    return Reader(line).words();
}

const fapictl::Method& findMethod(std::string_view interface, std::string_view method) {
    return fapictl::findMethod(fapictl::findInterface(fapictl::factoryPackage(), interface), method);
}

Json call(const fapictl::sp<fapictl::IBase>& object, const fapictl::Method& method,
          const std::vector<std::string>& words) {
    fapictl::Reply reply = method.call(*object, fapictl::bindArguments(method, words));
    if (!reply.failure.empty()) {
        throw std::runtime_error(method.name + ": " + reply.failure);
    }
    return std::move(reply.results);
}

std::string show(const Json& value) {
    if (value.is_string()) {
        return '\'' + shortened(fapictl::escaped(value.get_ref<const std::string&>())) + '\'';
    }
    if (value.is_binary()) {
        return '<' + shortened(fapictl::toHex(value.get_binary()), 2) + '>';
    }
    return value.is_array()    ? '[' + showEach(value, ",") + ']'
           : value.is_object() ? '{' + showEach(value, ",") + '}'
                               : value.dump();
}

std::string showAll(const Json& results) {
    return showEach(results, " ");
}

}  // namespace cases
