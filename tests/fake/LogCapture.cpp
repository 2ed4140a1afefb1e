#include "tests/fake/LogCapture.h"

#include <android/log.h>

#include <mutex>
#include <utility>

#include "service/frame/Debug.h"

namespace {

std::mutex sMutex;
std::vector<std::string> sLines;  // guarded by sMutex

std::string withoutLineNumber(std::string text) {
    const size_t colon = text.find(':');
    const size_t end = text.find("> ");
    if (text.rfind('<', 0) != 0 || end == std::string::npos || colon > end) {
        return text;
    }
    const std::string number = text.substr(colon + 1, end - colon - 1);
    const size_t again = text.find('(' + number + ")]", end);
    if (again != std::string::npos) {
        text.replace(again + 1, number.size(), "#");
    }
    return text.replace(colon + 1, number.size(), "#");
}

void collect(const __android_logger_data* data, const char* message) {
    const char priority = "??VDIWEFS"[data->priority];
    const std::lock_guard lock(sMutex);
    sLines.push_back(std::string(1, priority) + ' ' + data->tag + ": " + withoutLineNumber(message));
}

}  // namespace

LogCapture::LogCapture(uint8_t u8Flag) {
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    __android_log_set_logger(collect);
    u8TvFactoryDebug = u8Flag;
    takeLines();
}

LogCapture::~LogCapture() {
    __android_log_set_logger(__android_log_stderr_logger);
    u8TvFactoryDebug = 1;
}

std::vector<std::string> LogCapture::takeLines() {
    const std::lock_guard lock(sMutex);
    return std::exchange(sLines, {});
}
