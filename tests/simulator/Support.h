#pragma once

#include <sys/wait.h>

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

/** What a new probe process printed, on either stream; a line with its exit status follows unless it is 0. */
inline std::string probe(const std::string& environment, const std::string& arguments) {
    const std::string command = "env -u HOME -u XDG_STATE_HOME -u ZVTTV_STATE_DIR " + environment +
                                " " PROBE " " + arguments + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) {
        output += static_cast<char>(c);
    }
    const int status = pclose(pipe);
    return status == 0 ? output : output + "exit " + std::to_string(WEXITSTATUS(status));
}
