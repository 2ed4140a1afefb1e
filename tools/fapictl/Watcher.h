#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "tools/fapictl/Engine.h"
#include "tools/fapictl/Events.h"

namespace fapictl {

/** Who is told of events: one after the other, on the thread that receives them. */
struct EventListener {
    std::function<void(const Event&)> take;
    /** The service's process has ended, and all that it sent has been told. The last call of all. */
    std::function<void()> died;
};

/**
 * Registers one callback with each event manager, and tells all listeners of what comes in. A manager takes
 * no callback back: it stays registered until this process or the service's ends. From any thread.
 */
class Watches {
  private:
    struct Channel;

  public:
    /** A listener's place; ending it more than once does nothing. */
    class Subscription {
      public:
        /** No call of the listener runs or begins from then on. Not to be called by the listener. */
        void end();

      private:
        friend class Watches;
        std::shared_ptr<Channel> mChannel;
        std::shared_ptr<EventListener> mListener;
    };

    Watches();
    ~Watches();
    Watches(const Watches&) = delete;

    /**
     * Registered when it returns. After the death of the service, it is with the next one of that name.
     * Throws Failure (NotFound, Transport, Status). May block when the service is stopped.
     */
    Subscription add(Engine& engine, const Target& target, std::shared_ptr<EventListener> listener);

  private:
    struct Place;

    std::mutex mMutex;
    std::map<std::string, std::shared_ptr<Place>> mPlaces;  // by instance; guarded by mMutex
};

}  // namespace fapictl
