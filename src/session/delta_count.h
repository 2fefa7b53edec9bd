#pragma once
// A sprite's number of deltas: frames added at the end of its delta set (empty deltas, drawn in
// afterwards) or taken from its end, with the delta table, every later sprite's delta numbers and
// the car's doors kept in step. The count is one byte of the sprite's record (at most 255), and
// the whole style's delta numbers are 16-bit (at most 32767 deltas).

#include <string>
#include <vector>

namespace torquil {

class Platform;
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

// The delta view's edits (session/delta_set_resize.cpp), each one step of the undo history like
// the edits of session/edits.h.
//
// Adds one delta at the end of the selected sprite's deltas: an empty one, whose frame shows the
// car as it is, to draw on (then export the delta set, draw, import). Sets gDeltasChanged and
// gLayoutChanged. Recorded as "Add Delta N". False with a message past 255 deltas.
[[nodiscard]] bool addDelta(StyleSession& session, Platform& platform);
// Removes delta `index` (0-based) of the selected sprite; later deltas move down and the car's
// doors follow. A delta that a door shows is named and kept unless `dropUsed` (the door then
// shows the sprite's last remaining delta). Recorded as "Remove Delta N".
[[nodiscard]] bool removeDelta(StyleSession& session, Platform& platform, int index, bool dropUsed);

} // namespace torquil
