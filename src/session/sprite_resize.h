#pragma once
// A sprite of another size: what importing a picture of another size would do (its new place on
// the pages, the deltas that no longer fit, the doors that use them), told before anything
// changes, and the edit itself. The sprite's top-left corner stays its top-left corner: what
// grows, grows to the right and down. Every other sprite keeps its pixels and numbers.

#include "session/page_space.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace torquil {

class StyleSession;
struct SpriteRec;

// A sprite's size is two bytes (W, H) and its pixel count a 16-bit signed field.
inline constexpr int kMaxSpriteSide = 255;
inline constexpr int kMaxSpritePixels = 32767;

struct PictureSize {
    int width = 0, height = 0;
    bool operator==(const PictureSize&) const = default;
};

// The width and height a BMP or PNG file says it has; nullopt when it is neither (the import then
// says why with its own message).
[[nodiscard]] std::optional<PictureSize> pictureSize(const std::filesystem::path& file);

struct ResizePlan {
    bool possible = false;
    std::string why; // the reason, when not possible
    int oldWidth = 0, oldHeight = 0, width = 0, height = 0;
    SpritePlace place;
    std::vector<int> unfitDeltas;  // the sprite's delta numbers (0-based) that do not fit
    std::vector<int> doorsOnUnfit; // the car's doors (1-based) whose delta is among them
};

// What resizing `sprite` to width x height would do.
[[nodiscard]] ResizePlan planSpriteResize(const StyleSession& session, const SpriteRec& sprite,
                                          int width, int height);

// The plan in the user's words: old and new size, where the sprite goes, which deltas do not fit
// and which doors use them. Lines joined with "\r".
[[nodiscard]] std::string describeResize(const ResizePlan& plan, int asn);

// Moves and resizes the selected sprite as planned and puts width x height pixels (top row first)
// there; the deltas that do not fit are removed. Sets gPagesChanged, gLayoutChanged and, when the
// delta store moves, gDeltasChanged. Used inside an edit scope (importSpriteResizing).
void applySpriteResize(StyleSession& session, const ResizePlan& plan,
                       const std::vector<std::uint8_t>& pixels);

// Removes deltas `drop` (the sprite's own numbers, 0-based) of the sprite with number `asn` from
// the delta table and its record; later deltas of the style move down one place for each, and the
// car's doors that pointed at later deltas are renumbered. A door whose delta is removed points at
// the sprite's last remaining delta (delta 0 when none is left), so that the game is never sent
// past the sprite's deltas.
void removeSpriteDeltas(StyleSession& session, int asn, std::vector<int> drop);

} // namespace torquil
