#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/fapictl/Failure.h"
#include "tools/fapictl/Model.h"
#include "tools/fapictl/Statuses.h"

// What the verbs and a session have in common: everything that is done with services, without a stream, an
// option or a word of a command line. What goes wrong is a Failure, whose text is for people.
namespace fapictl {

/** Which of the services of a kind is meant, and how long it may be waited for. */
struct Target {
    std::string instance = "default";
    std::optional<double> seconds = {};  // none: it has to be registered already
};

/** What a call brought back. */
struct Answer {
    Json results = Json::array();        // a value for each of the method's, in their order
    std::optional<int64_t> status = {};  // none of a method without one
    std::string statusName = {};         // "out of range"; empty without a status
    std::string reason = {};             // why the board refused the call; may hold any bytes, and be empty
    bool failed = false;                 // by its status, or since it says that it was not done
    double milliseconds = 0;             // of the call alone
};

/** A service in the registry; also one of another package. */
struct Instance {
    std::string interface;  // descriptor
    std::string name;
    int32_t pid;  // 0 or less: not known
};

/** Calls services of one package. From any thread. */
class Engine {
  public:
    /** Whether to keep what was found. A process that makes one call gains nothing from it. */
    enum class Services { Find, Keep };

    explicit Engine(const Package& package, Services services = Services::Find);
    ~Engine();
    Engine(const Engine&) = delete;

    const Package& package() const { return mPackage; }

    /** Throws Failure (NotFound) when there is none, or none in time. May block when it is stopped. */
    sp<IBase> find(const Interface& interface, const Target& target);

    /**
     * Requires one valid value for each argument, in order. A status is no failure of this.
     * Throws Failure (NotFound, Transport) when no results come back.
     */
    Answer call(const Interface& interface, const Method& method, const Json& arguments,
                const Target& target);

    /**
     * Waits until the interfaces are registered, for ever without a time. Returns those that were not in
     * time. Calls no service. Throws Failure (Transport) when the registry cannot be watched.
     */
    std::vector<const Interface*> wait(const std::vector<const Interface*>& interfaces, const Target& target);

    /**
     * Waits until calls are no longer answered with -5, not ready, for ever without a time; a service that
     * ends in between is waited for anew. Asks for the library's version every 20 ms. Throws Failure
     * (NotFound when it was not in time, Transport). May block when the service is stopped.
     *
     * @param begin when the target's time began
     */
    void waitUntilReady(const Target& target, std::chrono::steady_clock::time_point begin);

  private:
    class Arrivals;
    class Kept;

    const Package& mPackage;
    Statuses mStatuses;
    const std::shared_ptr<Kept> mKept;  // null when nothing is kept
    std::mutex mMutex;
    sp<Arrivals> mArrivals;  // null until somebody waits; guarded by mMutex
};

/** What a call with a status other than 0 comes to, where more was wanted than its results. */
Failure refused(const std::string& what, const Answer& answer);

/** What waiting for services has come to when some of them are missing. */
Failure notInTime(size_t missing, size_t wanted, const Target& target);

/** Every registered service, sorted. Throws Failure (Transport). */
std::vector<Instance> registeredServices();

/**
 * The services that names or patterns select, each once, in the order of their descriptors; no names are all.
 * Throws Failure (Usage), for the name of an interface that clients implement, too.
 */
std::vector<const Interface*> selectServices(const Package& package, const std::vector<std::string>& names);

/** The interface of a service. Throws Failure (Usage), for one that clients implement, too. */
const Interface& findCallable(const Package& package, const std::string& name);

/**
 * Interfaces with their methods and types: those of an interface's name and a method's, or of patterns;
 * without them, of all. Throws Failure (Usage).
 */
Json introspection(const Package& package, const std::vector<std::string>& names);

/** What a service writes of its state; the words are its own options. Throws Failure (Transport). */
std::string debugText(IBase& service, const std::vector<std::string>& words);

/** What of the picture a capture shows; the place is the service's option. */
const std::vector<std::string>& captureLayers();

/**
 * The PNG file of what the simulated board's panel shows. Throws Failure: Usage for unknown layers, Status
 * when the board refuses, Output when the service wrote a file that is not here.
 */
std::string capturePicture(Engine& engine, const std::string& layers, const Target& target);

/** The blocks of an HDMI port's EDID. Throws Failure: Usage for a wrong port, Status when there is none. */
std::vector<uint8_t> readEdid(Engine& engine, const Json& port, const Target& target);

/** What edid-decode says of an EDID; nothing where it is not installed. */
std::optional<std::string> decodedEdid(const std::vector<uint8_t>& edid);

}  // namespace fapictl
