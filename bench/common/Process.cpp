#include "bench/common/Process.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>

namespace bench {

namespace {

volatile sig_atomic_t sEndingChild = 0;  // a child of ours is being ended by us

/** Without the other end a measurement would wait for ever. */
void onChildEnded(int) {
    if (sEndingChild == 0) {
        const char complaint[] = "bench: a program that is needed has ended\n";
        (void)!write(STDERR_FILENO, complaint, sizeof(complaint) - 1);
        _exit(2);
    }
}

/** For exec; of the two texts' memory. */
std::vector<char*> argumentsOf(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    return argv;
}

}  // namespace

Child::Child(const std::string& program, const std::vector<std::string>& arguments, int standardInput,
             int standardOutput) {
    const std::vector<char*> argv = argumentsOf(program, arguments);
    struct sigaction action {};
    action.sa_handler = onChildEnded;
    action.sa_flags = SA_NOCLDSTOP | SA_RESTART;
    sigaction(SIGCHLD, &action, nullptr);
    mPid = fork();
    if (mPid < 0) {
        failOnCall("fork");
    }
    if (mPid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (standardInput >= 0) {
            dup2(standardInput, STDIN_FILENO);
        }
        if (standardOutput >= 0) {
            dup2(standardOutput, STDOUT_FILENO);
        }
        execv(argv[0], argv.data());
        const char complaint[] = "can not start a program of the benchmark\n";
        (void)!write(STDERR_FILENO, complaint, sizeof(complaint) - 1);
        _exit(127);
    }
}

Child::~Child() {
    sEndingChild = 1;
    kill(mPid, SIGKILL);
    waitpid(mPid, nullptr, 0);
    sEndingChild = 0;
}

void runToItsEnd(const std::string& program, const std::vector<std::string>& arguments) {
    static const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const std::vector<char*> argv = argumentsOf(program, arguments);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, nowhere, STDOUT_FILENO);
    sEndingChild = 1;
    pid_t pid = -1;
    int status = 0;
    const int error = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0 || waitpid(pid, &status, 0) != pid || status != 0) {
        fail(program + " fails");
    }
    sEndingChild = 0;
}

TemporaryFolder::TemporaryFolder() {
    mPath = std::filesystem::temp_directory_path() / "zvttv-bench-XXXXXX";
    if (mkdtemp(mPath.data()) == nullptr) {
        failOnCall("mkdtemp");
    }
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

OneCpu::OneCpu() {
    if (sched_getaffinity(0, sizeof(mBefore), &mBefore) != 0) {
        failOnCall("sched_getaffinity");
    }
    // The last one: the first handles the most interrupts.
    int last = CPU_SETSIZE - 1;
    while (last > 0 && !CPU_ISSET(last, &mBefore)) {
        --last;
    }
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(last, &one);
    if (sched_setaffinity(0, sizeof(one), &one) != 0) {
        failOnCall("sched_setaffinity");
    }
}

OneCpu::~OneCpu() {
    sched_setaffinity(0, sizeof(mBefore), &mBefore);
}

std::string sibling(const std::string& name) {
    return std::filesystem::read_symlink("/proc/self/exe").replace_filename(name);
}

void fail(const std::string& what) {
    std::cerr << "bench: " << what << "\n";
    std::exit(2);
}

void failOnCall(const std::string& call) {
    fail(call + ": " + std::strerror(errno));
}

}  // namespace bench
