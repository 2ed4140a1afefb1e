#pragma once

#include <log/log.h>

#include <mutex>
#include <string>
#include <utility>
#include <vector>

/** One line that was logged while a LogCapture lived. */
struct LogLine {
    int priority;
    std::string tag;
    std::string text;
};

/** Takes the process's log lines, of every priority, in place of standard error. One at a time. */
class LogCapture {
  public:
    LogCapture() {
        takeLines();
        mPriority = __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
        __android_log_set_logger([](const __android_logger_data* data, const char* text) {
            const std::lock_guard<std::mutex> lock(sLock());
            sLines().push_back({data->priority, data->tag == nullptr ? "" : data->tag, text});
        });
    }
    ~LogCapture() {
        __android_log_set_logger(__android_log_stderr_logger);
        __android_log_set_minimum_priority(mPriority);
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogLine> lines() const {
        const std::lock_guard<std::mutex> lock(sLock());
        return sLines();
    }
    /** The lines since the last time. */
    std::vector<LogLine> takeLines() {
        const std::lock_guard<std::mutex> lock(sLock());
        return std::exchange(sLines(), {});
    }

    bool contains(const std::string& part) const {
        for (const LogLine& line : lines()) {
            if (line.text.find(part) != std::string::npos) {
                return true;
            }
        }
        return false;
    }

  private:
    static std::mutex& sLock() {
        static std::mutex lock;
        return lock;
    }
    static std::vector<LogLine>& sLines() {
        static std::vector<LogLine> lines;
        return lines;
    }

    int mPriority;
};
