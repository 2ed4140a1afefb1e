#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>

#include "chiplayer/types.h"

namespace simulator {

/**
 * What every module has: whether it is initialised, and its one event handler.
 *
 * A module's source holds one in a function-local static that is never destroyed, since handlers may run
 * while the process exits, and forwards its four lifecycle functions to it:
 *
 *     Module& self() {
 *         static Module& sModule = *new Module("sys", describe);
 *         return sModule;
 *     }
 *     int32_t a_zvttvfapi_sys_init() {
 *         return self().init();
 *     }
 *
 * Every function may be called on any thread, from inside the module's own handler too.
 */
class Module {
  public:
    /** What the module would show of its state, whole lines; called on any thread. */
    using Describe = std::string (*)();

    /** The name under which find() and describeAll() know it, for good; null for none. */
    explicit Module(const char* name = nullptr, Describe describe = nullptr);
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    /** The module that was made with this name, or null. */
    static Module* find(const std::string& name);

    /** The state of the module of that name, of all that show theirs for an empty one, under headings. */
    static std::string describeAll(const std::string& name);

    /** kAlreadySetUp when initialised. */
    int32_t init();

    /** Ends the module's events: none is being delivered when it returns. kNotSetUp without init. */
    int32_t deinit();

    /** kOutOfRange for null; kAlreadySetUp while there is a handler. */
    int32_t registerHandler(fapi_core::ZvtTvFApiEventHandler handler);

    /**
     * Empties the slot and waits for deliveries in progress, those excepted that the calling thread itself is
     * in the middle of. kNotSetUp without a handler.
     */
    int32_t unregisterHandler();

    /** The four payload records of an event. */
    struct Payload {
        fapi_core::ZvtTvFApiEventCommonObject objects[4];
    };

    /**
     * Delivers an event on the calling thread, which must hold no lock that a function of the library takes.
     * Returns what the handler returned, or kNotSetUp when the module is not initialised or has no handler.
     */
    int32_t raise(uint32_t type, const Payload& payload);

  private:
    class Delivery;

    void waitForDeliveries(std::unique_lock<std::mutex>& lock);

    std::mutex mMutex;
    // All below guarded by mMutex.
    std::condition_variable mDelivered;
    fapi_core::ZvtTvFApiEventHandler mHandler = nullptr;
    bool mInitialised = false;
    unsigned mDeliveries = 0;
};

}  // namespace simulator
