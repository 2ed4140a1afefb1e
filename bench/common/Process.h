#pragma once

#include <sched.h>
#include <sys/types.h>

#include <string>
#include <vector>

namespace bench {

/**
 * A program that runs until this object ends. It is killed with us, too; if it ends before, so do we. From
 * one thread.
 */
class Child {
  public:
    /**
     * @param program path
     * @param standardInput, standardOutput its descriptors 0 and 1; ours stay open
     */
    explicit Child(const std::string& program, const std::vector<std::string>& arguments = {},
                   int standardInput = -1, int standardOutput = -1);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t pid() const { return mPid; }

  private:
    pid_t mPid;
};

/** A folder for the run's sockets and state, private, removed with what is in it. */
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string operator/(const std::string& name) const { return mPath + "/" + name; }

  private:
    std::string mPath;
};

/** Binds this process, and the children that it starts meanwhile, to one CPU. */
class OneCpu {
  public:
    OneCpu();
    ~OneCpu();
    OneCpu(const OneCpu&) = delete;
    OneCpu& operator=(const OneCpu&) = delete;

  private:
    cpu_set_t mBefore;
};

/** Runs a program, whose output is nobody's, to its end, which must be a success. From one thread. */
void runToItsEnd(const std::string& program, const std::vector<std::string>& arguments);

/** A program of the same folder as ours. */
std::string sibling(const std::string& name);

/** Ends the benchmark: it can not measure what it was asked to. */
[[noreturn]] void fail(const std::string& what);

/** The same, with what the last system call complained of. */
[[noreturn]] void failOnCall(const std::string& call);

}  // namespace bench
