#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>

#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Values.h"
#include "tools/fapictl/Verbs.h"

namespace fapictl {
namespace {

constexpr size_t kBlock = 128;
/** Where an EDID tells how many blocks follow its first. */
constexpr size_t kExtensions = 126;
/** The shell's, for a program that it does not find. */
constexpr int kNoProgram = 127;

}  // namespace

std::optional<std::string> decodedEdid(const std::vector<uint8_t>& edid) {
    // The program inherits the file, which has no name to clean up.
    const int file = memfd_create("edid", 0);
    if (file < 0 || write(file, edid.data(), edid.size()) != static_cast<ssize_t>(edid.size())) {
        throw Failure(Exit::Output, std::string("no memory for the EDID: ") + std::strerror(errno));
    }
    FILE* const pipe = popen(("edid-decode /dev/fd/" + std::to_string(file) + " 2>/dev/null").c_str(), "r");
    std::string text;
    char chunk[4096];
    for (size_t count; pipe != nullptr && (count = fread(chunk, 1, sizeof chunk, pipe)) > 0;) {
        text.append(chunk, count);
    }
    const int status = pipe == nullptr ? -1 : pclose(pipe);
    close(file);
    if (status != -1 && WIFEXITED(status) && WEXITSTATUS(status) != kNoProgram && !text.empty()) {
        return text;
    }
    return std::nullopt;
}

std::vector<uint8_t> readEdid(Engine& engine, const Json& port, const Target& target) {
    const Interface& peripheral = findInterface(engine.package(), "Peripheral");
    const Method& method = findMethod(peripheral, "get_hdmi_edid_data");
    const Json arguments = Json::array({checkValue(*method.arguments[0].type, port, "PORT")});
    const Answer answer = engine.call(peripheral, method, arguments, target);
    if (answer.failed) {
        throw refused("there is no EDID", answer);
    }
    std::vector<uint8_t> bytes = answer.results[0].front().get_binary();
    bytes.resize(std::min(bytes.size(), kBlock * (size_t{bytes.at(kExtensions)} + 1)));
    return bytes;
}

Exit edid(const Context& context) {
    const std::vector<std::string>& words = context.options.words;
    const std::vector<uint8_t> bytes = readEdid(context.engine, words[0], targetOf(context));
    if (words.size() > 1) {
        writeBytes(context, words[1], {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    } else if (const std::optional<std::string> text = decodedEdid(bytes)) {
        context.out << *text;
    } else {
        context.err << "fapictl: edid-decode is not installed or said nothing: these are the bytes\n";
        for (const std::string& line : hexDump(bytes)) {
            context.out << line << '\n';
        }
    }
    return Exit::Success;
}

}  // namespace fapictl
