#pragma once
// Find Car: the loaded cars that a typed text names. A whole number is an absolute sprite number
// (ASN); "model N" (or "m N") is a car model; anything else is a part of the car's name, in any
// case.

#include <string>
#include <vector>

namespace torquil {

class StyleSession;

// Absolute sprite numbers of the matching cars, in ASN order. A number that no loaded car has is
// returned as it is, so that Find Car can still select any sprite by its ASN.
[[nodiscard]] std::vector<int> findCars(const StyleSession& session, const std::string& query);

// The match to select next: the first one after `current` (ASN), else the first; 0 when none.
[[nodiscard]] int nextMatch(const std::vector<int>& matches, int current);

} // namespace torquil
