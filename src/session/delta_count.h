#pragma once
// A sprite's number of deltas: frames added at the end of its delta set (empty deltas, drawn in
// afterwards) or taken from its end, with the delta table, every later sprite's delta numbers and
// the car's doors kept in step. The count is one byte of the sprite's record (at most 255), and
// the whole style's delta numbers are 16-bit (at most 32767 deltas).

#include <string>
#include <vector>

namespace torquil {

class StyleSession;

inline constexpr int kMaxSpriteDeltas = 255;
inline constexpr int kMaxStyleDeltas = 32767;

struct DeltaCountPlan {
    bool possible = false;
    std::string why;
    int from = 0, to = 0;
    std::vector<int> removed;        // the sprite's delta numbers (0-based) taken away
    std::vector<int> doorsOnRemoved; // the car's doors (1-based) that show one of them
};

// What setting sprite `asn`'s delta count to `count` would do.
[[nodiscard]] DeltaCountPlan planDeltaCount(const StyleSession& session, int asn, int count);

// The plan in the user's words, lines joined with "\r".
[[nodiscard]] std::string describeDeltaCount(const DeltaCountPlan& plan, int asn);

// Adds `count` empty deltas after the last delta of sprite `asn` (where its deltas lie in the
// style's order when it has none); every later delta moves up. Sets gDeltasChanged and
// gLayoutChanged.
void addSpriteDeltas(StyleSession& session, int asn, int count);

// Carries the plan out (removeSpriteDeltas or addSpriteDeltas).
void applyDeltaCount(StyleSession& session, int asn, const DeltaCountPlan& plan);

} // namespace torquil
