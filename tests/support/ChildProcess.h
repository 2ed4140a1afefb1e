#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

/** A process that ends with this object at the latest, and with the test that made it. Its output can be
 * read. */
class ChildProcess {
  public:
    /** Runs the program; its standard error goes to the file, if one is named. */
    ChildProcess(const std::vector<std::string>& command, const std::string& errors = "") {
        int fds[2];
        EXPECT_EQ(0, pipe2(fds, O_CLOEXEC));
        std::vector<char*> words;
        for (const std::string& word : command) {
            words.push_back(const_cast<char*>(word.c_str()));
        }
        words.push_back(nullptr);
        mPid = fork();
        if (mPid == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            dup2(fds[1], STDOUT_FILENO);
            if (!errors.empty()) {
                dup2(open(errors.c_str(), O_CREAT | O_WRONLY | O_APPEND | O_CLOEXEC, 0600), STDERR_FILENO);
            }
            execv(words[0], words.data());
            _exit(127);
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
