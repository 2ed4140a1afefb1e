#include "fuzz/State.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "chiplayer/chiplayer.h"
#include "fuzz/Input.h"

const std::filesystem::path& fuzz::stateFolder() {
    static const std::filesystem::path& sFolder = *new std::filesystem::path([] {
        std::string path = std::filesystem::temp_directory_path() / "fuzz-board-XXXXXX";
        require(mkdtemp(path.data()) != nullptr);
        setenv("ZVTTV_STATE_DIR", path.c_str(), 1);
        setenv("ZVTTV_BOARD_UPGRADE_MS", "1", 1);
        setenv("ZVTTV_FRC_UPGRADE_MS", "1", 1);
        std::atexit([] {
            std::error_code ignored;  // somebody may have removed it
            std::filesystem::remove_all(stateFolder(), ignored);
        });
        return path;
    }());
    return sFolder;
}

void fuzz::makeReady() {
    if (a_zvttvfapi_common_get_fapi_status() == 0) {
        return;
    }
    std::ofstream(stateFolder() / "raise") << "force clear\nforce ready\n";
    for (int i = 0; a_zvttvfapi_common_get_fapi_status() != 0; ++i) {
        require(i < 5000);
        usleep(1000);
    }
}
