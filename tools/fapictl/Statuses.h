#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "tools/fapictl/Model.h"

namespace fapictl {

/** What one of the service's own statuses is called: "success", "not ready", ...; else "library status". */
std::string statusName(int64_t status);
bool isServiceStatus(int64_t status);

/**
 * What statuses are called, and why calls were refused. The service's own statuses have names; the others are
 * the chip-layer library's. One that has names for its own, as the simulated board has, is asked for them,
 * for each once: they are parameters of its configuration file `board`.
 *
 * A question lasts 2 s at most, should the service hang. Any thread.
 */
class Statuses {
  public:
    Statuses();
    ~Statuses();
    Statuses(const Statuses&) = delete;

    /** "success", "out of range", ...; "library status" when nobody has a name for it. */
    std::string name(const Package& package, const std::string& instance, int64_t status);

    /**
     * Why the library refused this call when it was last made, in its words, which may hold any bytes; empty
     * when it does not tell, as one that has not named a status before. Arguments are as Method::call() takes
     * them.
     */
    std::string refusal(const Package& package, const std::string& instance, const Method& method,
                        const Json& arguments);

  private:
    struct Known;
    const std::unique_ptr<Known> mKnown;  // what libraries have told so far
};

}  // namespace fapictl
