#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/fapictl/Events.h"

namespace fapictl {

/** Which events somebody wants: of any of the modules, of any of the types, and with all of the matches. */
class EventFilter {
  public:
    /** Takes every event. */
    EventFilter() = default;

    /**
     * Throws Failure (Usage) for what it does not understand.
     *
     * @param modules names of eventModules() in any letter case; none for all
     * @param types numbers, or NUMBER/MASK for the types whose bits in the mask make the number; none for all
     * @param matches records as tools/fapictl/Records.h has them, which may have a text~PATTERN too, an
     *     extended regular expression that is found in the text: an event has to have, for each of the
     *     matches, a record that has all its parts
     */
    EventFilter(const std::vector<std::string>& modules, const std::vector<std::string>& types,
                const std::vector<std::string>& matches);

    /** May be called on any thread, on several at once. */
    bool takes(const Event& event) const;

  private:
    struct TypeMask {
        uint32_t number;
        uint32_t mask;
    };
    using Match = std::vector<std::function<bool(const Event::Record&)>>;

    std::vector<std::string> mModules;
    std::vector<TypeMask> mTypes;
    std::vector<Match> mMatches;
};

}  // namespace fapictl
