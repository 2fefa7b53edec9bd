#pragma once
#include <cstdint>

namespace torquil {

// Rounds a byte count up to a multiple of unit; a count that already is a multiple stays, else
// (truncated quotient + 1) x unit, which is how the game's files pad their sections.
[[nodiscard]] constexpr std::int64_t roundUpTo(std::int64_t x, std::int64_t unit) {
    if (x % unit == 0) return x;
    return (x / unit + 1) * unit;
}
[[nodiscard]] constexpr std::int64_t roundUp16384(std::int64_t x) {
    return roundUpTo(x, 16384);
}
[[nodiscard]] constexpr std::int64_t roundUp65536(std::int64_t x) {
    return roundUpTo(x, 65536);
}

} // namespace torquil
