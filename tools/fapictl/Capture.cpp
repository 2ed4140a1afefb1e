#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

#include "tools/fapictl/Board.h"
#include "tools/fapictl/Names.h"
#include "tools/fapictl/Text.h"
#include "tools/fapictl/Verbs.h"

namespace fapictl {
namespace {

/** A set has no folder that stands for its USB storage: only the library knows where the file goes. */
#ifdef __ANDROID__
constexpr bool kBoardIsSimulated = false;
#else
constexpr bool kBoardIsSimulated = true;
#endif

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

/** A file that goes away, whatever becomes of its contents. */
struct Removed {
    const std::string path;
    ~Removed() { unlink(path.c_str()); }
};

std::string contentOf(const std::string& path) {
    std::ifstream picture(path, std::ios::binary);
    if (!picture) {
        throw Failure(Exit::Output, "the service has captured its panel, but there is no " + inQuotes(path) +
                                            " (" + std::strerror(errno) +
                                            "): is ZVTTV_STATE_DIR the same as the service's?");
    }
    return {std::istreambuf_iterator<char>(picture), {}};
}

}  // namespace

std::string stateDirectory() {
    if (const std::string chosen = environment("ZVTTV_STATE_DIR"); !chosen.empty()) {
        return chosen;
    }
    if (const std::string states = environment("XDG_STATE_HOME"); !states.empty() && states[0] == '/') {
        return states + "/zvttvfactory";
    }
    if (const std::string home = environment("HOME"); !home.empty()) {
        return home + "/.local/state/zvttvfactory";
    }
    return "/tmp/zvttvfactory-" + std::to_string(geteuid());
}

const std::vector<std::string>& captureLayers() {
    static const std::vector<std::string> layers = {"all", "video", "graphics", "osd"};
    return layers;
}

std::string capturePicture(Engine& engine, const std::string& asked, const Target& target) {
    if (!kBoardIsSimulated) {
        throw Failure(Exit::Usage,
                      "capture brings the picture of a simulated board; on a set, call display "
                      "capture_screen_to_usb NAME LAYERS and take the file from the USB storage");
    }
    const std::vector<std::string>& layers = captureLayers();
    const auto layer = std::find_if(layers.begin(), layers.end(),
                                    [&](const std::string& one) { return equalIgnoringCase(one, asked); });
    if (layer == layers.end()) {
        throw Failure(Exit::Usage, "LAYERS: no layers " + inQuotes(asked) + suggestion(asked, layers));
    }
    const Interface& display = findInterface(engine.package(), "Display");
    const Method& method = findMethod(display, "capture_screen_to_usb");
    // A name that nobody else takes while this process runs.
    static std::atomic<unsigned> count{0};
    const std::string name = "fapictl-" + std::to_string(getpid()) + "-" + std::to_string(count++) + ".png";
    const Removed captured{stateDirectory() + "/files/usb/" + name};
    const Answer answer = engine.call(display, method, Json::array({name, layer - layers.begin()}), target);
    if (answer.failed) {
        throw refused("the capture failed", answer);
    }
    return contentOf(captured.path);
}

Exit capture(const Context& context) {
    const std::vector<std::string>& words = context.options.words;
    const std::string layers = words.size() > 1 ? words[1] : captureLayers()[0];
    writeBytes(context, words[0], capturePicture(context.engine, layers, targetOf(context)));
    return Exit::Success;
}

}  // namespace fapictl
