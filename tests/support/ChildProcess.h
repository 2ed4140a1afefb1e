#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

/** A process that ends with this object at the latest, and with the test that made it. Its output can be
 * read. */
class ChildProcess {
  public:
    /** Runs the program; its standard error goes to the file, if one is named. */
    explicit ChildProcess(const std::vector<std::string>& command, const std::string& errors = "")
        : ChildProcess([&] {
              std::vector<char*> words;
              for (const std::string& word : command) {
                  words.push_back(const_cast<char*>(word.c_str()));
              }
              words.push_back(nullptr);
              if (!errors.empty()) {
                  dup2(open(errors.c_str(), O_CREAT | O_WRONLY | O_APPEND | O_CLOEXEC, 0600), STDERR_FILENO);
              }
              execv(words[0], words.data());
              return 127;
          }) {}
    /** Runs the function in a copy of this process, of which only the calling thread is there, and ends with
     * what it returns. */
    explicit ChildProcess(const std::function<int()>& main) {
        int fds[2];
        EXPECT_EQ(0, pipe2(fds, O_CLOEXEC));
        mPid = fork();
        if (mPid == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            dup2(fds[1], STDOUT_FILENO);
            _exit(main());
        }
        close(fds[1]);
        mOutput = fds[0];
    }
    ChildProcess(ChildProcess&& other) noexcept
        : mPid(std::exchange(other.mPid, -1)), mOutput(std::exchange(other.mOutput, -1)) {}
    ~ChildProcess() {
        stop(SIGKILL);
        close(mOutput);
    }

    pid_t pid() const { return mPid; }
    int output() const { return mOutput; }
    /** The next letter of its output; 0 if that has ended. */
    char word() const {
        char letter = 0;
        return read(mOutput, &letter, 1) == 1 ? letter : '\0';
    }
    /** All of its output, to the end. */
    std::string readAll() const {
        std::string text;
        char chunk[4096];
        for (ssize_t got; (got = read(mOutput, chunk, sizeof(chunk))) > 0;) {
            text.append(chunk, static_cast<size_t>(got));
        }
        return text;
    }
    void signal(int number) const { kill(mPid, number); }
    void stop(int number) {
        if (mPid > 0) {
            kill(mPid, number);
            wait();
        }
    }
    /** How the process ended: its exit code, or minus the signal. */
    int wait() {
        int status = 0;
        waitpid(mPid, &status, 0);
        mPid = -1;
        return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
    }

  private:
    pid_t mPid;
    int mOutput;
};
