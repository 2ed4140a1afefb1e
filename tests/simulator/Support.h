#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

/** A folder that goes away with its test; in memory where there is such a place, since most tests write much.
 */
class TemporaryFolder {
  public:
    TemporaryFolder() {
        mPath = std::filesystem::exists("/dev/shm") ? "/dev/shm/simulator-test.XXXXXX"
                                                    : "/tmp/simulator-test.XXXXXX";
        if (mkdtemp(mPath.data()) == nullptr) {
            throw std::runtime_error("no folder for the test");
        }
    }
    ~TemporaryFolder() { std::filesystem::remove_all(mPath); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string operator/(const std::string& name) const { return mPath + "/" + name; }
    const std::string& path() const { return mPath; }

  private:
    std::string mPath;
};

inline std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void write(const std::string& path, const std::string& content) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

/** The state folder of this process's own board, chosen before anything asks for it. */
inline const TemporaryFolder& ownState() {
    static const TemporaryFolder sState;
    return sState;
}
inline const int sOwnStateChosen = setenv("ZVTTV_STATE_DIR", ownState().path().c_str(), 1);
