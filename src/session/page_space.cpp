#include "session/page_space.h"

#include "sprites/sprite_tables.h"
#include "style/pages.h"

#include <algorithm>
#include <vector>

namespace torquil {

namespace {

// Summed counts of used pixels: used(x0, y0, x1, y1) in constant time.
class PageUse {
public:
    PageUse(const SpriteTables& sprites, int page, int exceptAsn)
        : sum_(static_cast<std::size_t>(kPageSize + 1) * (kPageSize + 1), 0) {
        const std::vector<std::uint8_t> used = pixelsUsedByOthers(sprites, page, exceptAsn);
        for (int y = 0; y < kPageSize; ++y)
            for (int x = 0; x < kPageSize; ++x)
                at(x + 1, y + 1) = used[static_cast<std::size_t>(y * kPageSize + x)] +
                                   at(x, y + 1) + at(x + 1, y) - at(x, y);
    }
    // True when no other sprite uses a pixel of the w x h rectangle at (x, y).
    bool free(int x, int y, int w, int h) const {
        return at(x + w, y + h) - at(x, y + h) - at(x + w, y) + at(x, y) == 0;
    }

private:
    int at(int x, int y) const { return sum_[static_cast<std::size_t>(y * (kPageSize + 1) + x)]; }
    int& at(int x, int y) { return sum_[static_cast<std::size_t>(y * (kPageSize + 1) + x)]; }
    std::vector<int> sum_;
};

} // namespace

std::vector<std::uint8_t> pixelsUsedByOthers(const SpriteTables& sprites, int page, int exceptAsn) {
    std::vector<std::uint8_t> used(static_cast<std::size_t>(kPageBytes), 0);
    if (page < 0 || page >= kMaxPages) return used;
    const auto& list = sprites.pageSprites[static_cast<std::size_t>(page)];
    for (std::size_t sib = 1; sib < list.size(); ++sib) {
        const SpriteRec& s = list[sib];
        if (s.ASN == exceptAsn) continue;
        const int x1 = std::min(s.xo + s.W, kPageSize), y1 = std::min(s.yo + s.H, kPageSize);
        for (int y = s.yo; y < y1; ++y)
            std::fill(used.begin() + y * kPageSize + s.xo, used.begin() + y * kPageSize + x1,
                      std::uint8_t{1});
    }
    return used;
}

SpritePlace placeForSprite(const SpriteTables& sprites, const Pages& pages, const SpriteRec& sprite,
                           int width, int height) {
    SpritePlace place;
    if (width < 1 || height < 1 || width > kPageSize || height > kPageSize) {
        place.why = "A sprite must fit on one page of 256 x 256 pixels.";
        return place;
    }
    // Only whole pages that were loaded: a page cut short by Stop is not known to be free.
    const int wholePages =
        std::min<int>({pages.gNumBlockLoaded + 1, pages.gNumLinesLoaded / kPageSize, kMaxPages});

    if (sprite.page >= 0 && sprite.page < wholePages && sprite.xo + width <= kPageSize &&
        sprite.yo + height <= kPageSize &&
        PageUse(sprites, sprite.page, sprite.ASN).free(sprite.xo, sprite.yo, width, height)) {
        place = {PlaceKind::OldPlace, sprite.page, sprite.xo, sprite.yo, {}};
        return place;
    }
    for (int page = 0; page < wholePages; ++page) {
        const PageUse use(sprites, page, sprite.ASN);
        for (int y = 0; y + height <= kPageSize; ++y)
            for (int x = 0; x + width <= kPageSize; ++x)
                if (use.free(x, y, width, height)) return {PlaceKind::FreeSpace, page, x, y, {}};
    }
    const int next = pages.gNumBlockLoaded + 1;
    if (next < kMaxPages && pages.gNumLinesLoaded == next * kPageSize)
        return {PlaceKind::NewPage, next, 0, 0, {}};
    place.why = next >= kMaxPages
                    ? "No page has " + std::to_string(width) + " x " + std::to_string(height) +
                          " pixels free, and the style already has 26 pages, the most the game "
                          "loads."
                    : "No page has " + std::to_string(width) + " x " + std::to_string(height) +
                          " pixels free, and a page can only be added when every page was loaded.";
    return place;
}

} // namespace torquil
