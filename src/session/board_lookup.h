#pragma once
// What lies under the mouse on the page board: one mouse-over lookup per move.

#include <optional>
#include <string>
#include <utility>

namespace torquil {

class StyleSession;

// (page, SIB) of the sprite or tile covering pixel (x, y) of a page, if any.
[[nodiscard]] std::optional<std::pair<int, int>> hitTest(const StyleSession& session, int page,
                                                         int x, int y);

// The hover label: "ASN:12 BLK:0 SIB:12 Size:24x48 CLUT:7", a tile named by its kind
// ("lidTile:200 ..."), and for a car " Model:3 Name:Beamer"; empty where nothing is.
[[nodiscard]] std::string describeAt(const StyleSession& session, int page, int x, int y);

} // namespace torquil
