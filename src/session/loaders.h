#pragma once
// The section loaders the load sequence runs, each given the open style file and returning
// true on success. A loader that is not set is skipped.

#include <functional>
#include <memory>

namespace torquil {

class BinaryFile;
class Platform;
class StyleSession;
class PagePainter;

using SectionLoader = std::function<bool(StyleSession&, BinaryFile&, Platform&)>;

struct LoaderSet {
    SectionLoader carNames;      // "Load Car Names"
    SectionLoader palette24;     // "Load 24bit Palette"
    SectionLoader palette8;      // "Load 8bit Palette"
    SectionLoader spriteInfo;    // "Load Sprite Info"
    SectionLoader spriteNumbers; // "Load Sprite Numbers"
    SectionLoader carInfo;       // "Load Car Info"
    SectionLoader deltas;        // "Load Deltas"
    SectionLoader tileRegions;   // the tile hover regions of the tiles option
};

// The loaders of every part of the program, in the game's load order.
[[nodiscard]] LoaderSet standardLoaders();

// The painter that colours pages from the session's sprite and colour tables.
[[nodiscard]] std::unique_ptr<PagePainter> makePagePainter(const StyleSession& session);

} // namespace torquil
