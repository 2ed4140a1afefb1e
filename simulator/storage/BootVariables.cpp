#include "simulator/storage/BootVariables.h"

#include <cstdio>
#include <cstring>
#include <ctime>

#include "simulator/board/Board.h"
#include "simulator/board/Status.h"
#include "simulator/board/Text.h"
#include "simulator/storage/Emmc.h"

namespace simulator {
namespace {

// The variable that the clock is set by: seconds that it is ahead of the host's.
constexpr char kClockVariable[] = "rtc_offset";

// The variable that names the data index, and where it is while that is not set.
constexpr char kDataIndexVariable[] = "dataindex_path";
constexpr char kDataIndexPath[] = "/dataindex.ini";
constexpr char kDataIndex[] =
        "; The files of parameters that the information interface reads and writes.\n"
        "[files]\n"
        "panel = panel\n"
        "tuner = tuner\n"
        "ip = ip\n";

}  // namespace

int32_t readClock(unsigned* seconds) {
    char text[Emmc::kMaxValueBytes + 1];
    int64_t offset = 0;
    const int32_t status = boardEmmc().get(kClockVariable, text, sizeof(text));
    if (status == kOk) {
        if (!readNumber(text, &offset)) {
            fprintf(stderr, "board: the variable %s is \"%s\", not a number of seconds\n", kClockVariable,
                    text);
            return kOutOfRange;
        }
    } else if (status != kNotFound) {
        return status;
    }
    int64_t sum = 0;
    // The clock's 32 bits wrap around neither below 1970 nor beyond 2106.
    if (seconds == nullptr || __builtin_add_overflow(int64_t{time(nullptr)}, offset, &sum) || sum < 0 ||
        sum > int64_t{UINT32_MAX}) {
        return kOutOfRange;
    }
    *seconds = static_cast<unsigned>(sum);
    return kOk;
}

int32_t dataIndexPath(unsigned char* buffer, size_t size) {
    if (buffer == nullptr || size == 0) {
        return kOutOfRange;
    }
    char path[Emmc::kMaxValueBytes + 1];
    int32_t status = boardEmmc().get(kDataIndexVariable, path, sizeof(path));
    if (status == kNotFound) {
        strcpy(path, kDataIndexPath);
        static StateFolder& sFiles = *new StateFolder(boardState(), "files");
        status = sFiles.create(kDataIndexPath + 1, kDataIndex, 0644);
    }
    if (status != kOk) {
        return status;
    }
    const size_t length = strlen(path);
    if (length > size) {
        return kTooLong;
    }
    memcpy(buffer, path, length);
    if (length < size) {
        buffer[length] = '\0';
    }
    return kOk;
}

}  // namespace simulator
