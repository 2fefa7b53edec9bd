#include "exchange/sprite_exchange.h"

#include "platform/platform.h"
#include "sprites/sprite_tables.h"
#include "style/pages.h"

#include <algorithm>

namespace torquil {

namespace {

// The sprite's rectangle clipped to its page; empty for a page outside 0 .. kMaxPages - 1.
struct PageRect {
    int page = -1, x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    bool empty() const { return page < 0 || x0 >= x1 || y0 >= y1; }
};

PageRect clippedRect(const SpriteRec& s) {
    PageRect r;
    if (s.page < 0 || s.page >= kMaxPages) return r;
    r.page = s.page;
    r.x0 = s.xo;
    r.y0 = s.yo;
    r.x1 = std::min(s.xo + s.W, kPageSize);
    r.y1 = std::min(s.yo + s.H, kPageSize);
    return r;
}

} // namespace

std::vector<std::uint8_t> spritePixels(const Pages& pages, const SpriteRec& sprite) {
    const int w = sprite.W, h = sprite.H;
    std::vector<std::uint8_t> out(static_cast<std::size_t>(w) * h, 0);
    const PageRect r = clippedRect(sprite);
    if (r.empty()) return out;
    for (int y = r.y0; y < r.y1; ++y) {
        const std::uint8_t* src = pages.row(r.page, y);
        std::copy(src + r.x0, src + r.x1,
                  out.begin() + static_cast<std::ptrdiff_t>(y - sprite.yo) * w);
    }
    return out;
}

PageArea putSpritePixels(Pages& pages, const SpriteRec& sprite,
                         const std::vector<std::uint8_t>& pixels, ProgressSink& progress) {
    const PageRect r = clippedRect(sprite);
    if (r.empty()) return {};
    for (int y = r.y0; y < r.y1; ++y) {
        const auto src = pixels.begin() + static_cast<std::ptrdiff_t>(y - sprite.yo) * sprite.W;
        std::copy(src, src + (r.x1 - r.x0), pages.row(r.page, y) + r.x0);
        progress.setValue(y - r.y0);
    }
    return {r.page, r.x0, r.y0, r.x1 - r.x0, r.y1 - r.y0};
}

} // namespace torquil
