#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "tools/fapictl/FactoryPackage.h"
#include "tools/fapictl/Watcher.h"

/** Events that this process receives, once it has begun and for as long as it is there. */
class Listening {
  public:
    using Sink = std::function<void(const fapictl::Event&)>;
    explicit Listening(Sink sink)
        : mListener(
                  std::make_shared<fapictl::EventListener>(fapictl::EventListener{std::move(sink), [] {}})) {}
    ~Listening() { mPlace.end(); }
    Listening(const Listening&) = delete;

    void begin() { mPlace = mWatches.add(mEngine, {}, mListener); }

  private:
    const std::shared_ptr<fapictl::EventListener> mListener;
    fapictl::Engine mEngine{fapictl::factoryPackage()};
    fapictl::Watches mWatches;
    fapictl::Watches::Subscription mPlace;
};
