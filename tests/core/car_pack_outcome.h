#pragma once
// How a car pack's apply ended, in a word a failed expectation shows.

#include "session/car_pack.h"

#include <string>

namespace torquil::testing {

inline std::string applyOutcome(const CarPackApplied& applied) {
    if (applied) return "applied";
    return applied.error().refusal == CarPackRefusal::Refused ? "refused" : "failed";
}

} // namespace torquil::testing
