#include "simulator/board/EventPipe.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <thread>

#include "simulator/board/Board.h"
#include "simulator/board/BoardOrders.h"
#include "simulator/board/ChipCall.h"
#include "simulator/board/DriveOrders.h"
#include "simulator/board/EventRecords.h"
#include "simulator/board/Refusals.h"
#include "simulator/board/StateDirectory.h"
#include "simulator/board/Status.h"
#include "simulator/board/Text.h"

namespace simulator {
namespace {

constexpr char kPipeName[] = "raise";

// A line is read into memory whole; a writer that sends more without a line's end has it thrown away.
constexpr size_t kMaxLine = 2 * 1024 * 1024;
constexpr size_t kPiece = 4096;

std::string tooLong() {
    return "the line is longer than " + std::to_string(kMaxLine) + " bytes";
}

/** The text is empty, with room for a line and a piece of the next. */
void serve(Descriptor pipe, std::string text) {
    bool skipping = false;
    char chunk[kPiece];
    ssize_t got;
    while ((got = read(pipe.get(), chunk, sizeof(chunk))) > 0 || (got < 0 && errno == EINTR)) {
        text.append(chunk, got > 0 ? static_cast<size_t>(got) : 0);
        size_t start = 0;
        for (size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
            if (!skipping && end > start) {
                // What is wrong with it has been said, but for this.
                if (guarded([&] { return carryOutOrder(text.substr(start, end - start)); }) == kNoMemory) {
                    fprintf(stderr, "board: no memory for an order of the pipe\n");
                }
            }
            skipping = false;
        }
        text.erase(0, start);
        if (text.size() > kMaxLine) {
            fprintf(stderr, "board: no event raised: %s\n", tooLong().c_str());
            text.clear();
            skipping = true;
        }
    }
    fprintf(stderr, "board: the event pipe has ended: %s\n", strerror(errno));
}

/** The pipe's reading end; it is a writer too, so that it does not end with the last of the others. */
Descriptor openPipe() {
    const StateDirectory& state = boardState();
    const Opened folder = state.openFolder("");
    if (folder.status != kOk) {
        return Descriptor();
    }
    struct stat info {};
    if (mkfifoat(folder.file.get(), kPipeName, 0600) != 0 && errno != EEXIST) {
        fprintf(stderr, "board: no event pipe in %s: %s\n", state.path().c_str(), strerror(errno));
        return Descriptor();
    }
    Descriptor pipe(openat(folder.file.get(), kPipeName, O_RDWR | O_CLOEXEC | O_NOFOLLOW));
    if (!pipe || fstat(pipe.get(), &info) != 0 || !S_ISFIFO(info.st_mode)) {
        fprintf(stderr, "board: %s/%s is not a pipe that can be used\n", state.path().c_str(), kPipeName);
        return Descriptor();
    }
    return pipe;
}

}  // namespace

std::string readEventOrder(const std::string& line, EventOrder* order) {
    if (line.size() > kMaxLine) {
        return tooLong();
    }
    if (line.find('\0') != std::string::npos) {
        return "a line holds no NUL";
    }
    std::istringstream words(line);
    std::string module;
    std::string type;
    words >> module >> type;
    order->module = Module::find(module);
    if (order->module == nullptr) {
        return "there is no module \"" + module + "\"";
    }
    if (!readAnyNumber(type, &order->type)) {
        return "\"" + type + "\" is not an event type";
    }
    std::string records;
    std::getline(words, records, '\0');
    return readEventRecords(records, &order->payload);
}

int32_t carryOutOrder(const std::string& line) {
    std::istringstream words(line);
    std::string first;
    words >> first >> std::ws;
    if (first == "force" || first == "state") {
        std::string rest;
        std::getline(words, rest, '\0');
        return first == "force" ? forceOrder(rest) : printState(rest);
    }
    if (isDriveOrder(line)) {
        const std::string refusal = drive(line);
        if (!refusal.empty()) {
            complain("not obeyed: " + refusal);
        }
        return refusal.empty() ? kOk : kOutOfRange;
    }
    EventOrder order;
    const std::string fault = readEventOrder(line, &order);
    if (!fault.empty()) {
        complain("no event raised: " + fault);
        return kOutOfRange;
    }
    const int32_t status = order.module->raise(order.type, order.payload);
    if (status == kNotSetUp) {
        complain("no event raised: the module is not set up");
    } else if (status != kOk) {
        char type[16];
        snprintf(type, sizeof(type), "0x%x", order.type);
        complain(std::string("event ") + type + ": the handler's result is " + std::to_string(status));
    }
    return status == kOk || status == kNotSetUp ? status : kNotTold;
}

void startEventPipe() {
    static const bool sStarted = [] {
        Descriptor pipe = openPipe();
        if (pipe) {
            // Its memory too is had before the thread; for the rest of the process's life.
            std::string text;
            text.reserve(kMaxLine + kPiece);
            std::thread(serve, std::move(pipe), std::move(text)).detach();
        }
        return true;
    }();
    (void)sStarted;
}

}  // namespace simulator
