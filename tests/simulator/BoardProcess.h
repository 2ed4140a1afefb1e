#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

/** A process of the board whose state is in a folder, which is its working folder too; killed with this
 * object. */
class BoardProcess {
  public:
    /** The environment is NAME=VALUE each. */
    explicit BoardProcess(const std::string& state, const std::vector<std::string>& environment = {}) {
        std::vector<std::string> words = {"env", "-C", state, "-u", "HOME", "-u", "XDG_STATE_HOME"};
        words.push_back("ZVTTV_STATE_DIR=" + state);
        words.insert(words.end(), environment.begin(), environment.end());
        words.push_back(PROBE);
        std::vector<char*> arguments;
        for (std::string& word : words) {
            arguments.push_back(word.data());
        }
        arguments.push_back(nullptr);
        int ends[2];
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
        int errors[2];  // not a file, since a limit of the process's would count for it
        EXPECT_EQ(pipe2(errors, O_CLOEXEC | O_NONBLOCK), 0);
        EXPECT_GE(fcntl(errors[0], F_SETPIPE_SZ, 1 << 20), 1 << 20);
        mPid = fork();
        if (mPid == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            dup2(ends[1], STDIN_FILENO);
            dup2(ends[1], STDOUT_FILENO);
            dup2(errors[1], STDERR_FILENO);
            execvp(arguments[0], arguments.data());
            _exit(127);
        }
        close(ends[1]);
        close(errors[1]);
        mFd = ends[0];
        mErrors = errors[0];
    }
    ~BoardProcess() {
        kill(mPid, SIGKILL);
        finish();
        close(mFd);
        close(mErrors);
    }
    BoardProcess(const BoardProcess&) = delete;

    /** The answer to a line; "exit CODE" when the process has ended instead. */
    std::string ask(std::string line) {
        line += '\n';
        EXPECT_EQ(send(mFd, line.data(), line.size(), MSG_NOSIGNAL), static_cast<ssize_t>(line.size()));
        constexpr int kPatience = 30'000;  // ms; an answer that does not come is a fault of the board's
        for (pollfd polled{mFd, POLLIN, 0}; poll(&polled, 1, kPatience) > 0;) {
            char chunk[4096];
            const ssize_t got = recv(mFd, chunk, sizeof(chunk), 0);
            if (got <= 0) {
                return "exit " + std::to_string(finish());
            }
            mHeard.append(chunk, static_cast<size_t>(got));
            if (mHeard.back() == '\n') {
                mHeard.pop_back();
                return std::exchange(mHeard, "");
            }
        }
        return "no answer";
    }

    /** What it has said on its standard error since the last time; it must be asked for before it is a MiB.
     */
    std::string said() const {
        std::string text;
        char chunk[4096];
        for (ssize_t got; (got = read(mErrors, chunk, sizeof(chunk))) > 0;) {
            text.append(chunk, static_cast<size_t>(got));
        }
        return text;
    }

    /** Lets it end by itself, as at the end of its orders. Returns its exit code, or minus the signal. */
    int finish() {
        shutdown(mFd, SHUT_WR);
        int status = 0;
        if (waitpid(mPid, &status, 0) == mPid) {
            mEnd = WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
        }
        return mEnd;
    }

  private:
    pid_t mPid;
    int mFd;
    int mErrors;
    int mEnd = 0;
    std::string mHeard;
};
