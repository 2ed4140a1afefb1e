#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tools/fapictl/Model.h"

namespace fapictl {

/** What is known of the functions of a chip-layer library that is being checked. For one thread. */
class Findings {
  public:
    struct Function {
        std::string name;
        std::string mangled;
        std::string header;
        std::string library;  // "-" when none has it
        size_t calls = 0;
        std::vector<uint64_t> nanoseconds = {};  // of each that has come back
        size_t faults = 0;
    };
    struct Fault {
        std::string function;  // empty when it is nobody's in particular
        std::string text;
        std::string during;  // what was called when it was first seen
    };

    /** Takes the words of one line of the report (tools/check/Report.h). */
    void take(const std::vector<std::string>& words);
    /** What the tool is at, for the faults that come from now on. */
    void begin(const std::string& during);
    /** A fault, unless it is known with no more than other numbers in it. */
    void fault(const std::string& function, const std::string& text);

    /** Functions that have been called and have not come back, in all since the service was started. */
    std::vector<std::string> atWork() const;
    void forgetWork() {
        mAtWork.clear();
        mEnding = false;
    }
    /** Functions that were called since begin(), the readiness answer aside; each once, in order. */
    const std::vector<std::string>& called() const { return mCalled; }

    const std::vector<Function>& functions() const { return mFunctions; }
    const std::vector<Fault>& faults() const { return mFaults; }
    /** Events that came in, by their modules. */
    const std::map<std::string, size_t>& events() const { return mEvents; }
    /** The files of the libraries. */
    std::vector<std::string> libraries() const;
    /** Whether there is a fault of this text. */
    bool knows(const std::string& text) const;
    /** Functions that no library of the package's service has, and why as far as that can be told, as faults.
     */
    void judgeMissing(const std::string& package);

  private:
    Function* find(const std::string& name);

    std::vector<Function> mFunctions;  // in the headers' order
    std::vector<Fault> mFaults;
    std::set<std::string> mKnown;                // of the faults, without numbers
    std::map<std::string, std::string> mAtWork;  // by the thread
    bool mEnding = false;                        // only the one that ends the service is at work
    std::vector<std::string> mCalled;
    std::map<std::string, size_t> mEvents;
    std::string mDuring;
};

}  // namespace fapictl
