#include "exchange/transparency.h"

#include "sprites/sprite_tables.h"
#include "style/pages.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace torquil {

namespace {

std::optional<std::uint8_t> pagePixel(const Pages& pages, int page, int x, int y) {
    if (page < 0 || page >= kMaxPages || x < 0 || x >= kPageSize || y < 0 || y >= kPageSize)
        return std::nullopt;
    return pages.pixel(page, x, y);
}

// The four corner samples, 2 pixels in from each edge: top-left, top-right, bottom-left,
// bottom-right. None when one of them lies outside the page.
std::optional<std::array<std::uint8_t, 4>> cornerSamples(const Pages& pages, const SpriteRec& s) {
    const int left = s.xo + 2, right = s.xo + s.W - 3;
    const int top = s.yo + 2, bottom = s.yo + s.H - 3;
    const std::array<std::pair<int, int>, 4> points{
        {{left, top}, {right, top}, {left, bottom}, {right, bottom}}};
    std::array<std::uint8_t, 4> out{};
    for (std::size_t i = 0; i < points.size(); ++i) {
        const auto v = pagePixel(pages, s.page, points[i].first, points[i].second);
        if (!v) return std::nullopt;
        out[i] = *v;
    }
    return out;
}

// The corner test: a chained comparison whose partial results are truth
// values (255 or 0): four equal corners agree only when their index is 0 or 255. Kept as it is,
// since sprites fixed with it were made to pass it.
bool cornersAgree(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d) {
    const int t1 = a == b ? 255 : 0;
    const int t2 = t1 == c ? 255 : 0;
    return t2 == d;
}

} // namespace

TransparencyMask transparencyTest(const Pages& pages, const SpriteRec& sprite) {
    TransparencyMask mask;
    mask.width = sprite.W + 2;
    mask.height = sprite.H + 2;
    mask.rgb.assign(static_cast<std::size_t>(mask.width) * mask.height, kMaskBackground);
    for (int y = sprite.H - 1; y >= 0; --y) {
        std::uint32_t* out = mask.rgb.data() + static_cast<std::size_t>(y + 1) * mask.width + 1;
        for (int x = 0; x < sprite.W; ++x) {
            const auto v = pagePixel(pages, sprite.page, sprite.xo + x, sprite.yo + y);
            out[x] = v.value_or(0) != 0 ? kMaskShape : kMaskBackground;
        }
    }
    return mask;
}

std::optional<std::uint8_t> backgroundIndex(const Pages& pages, const SpriteRec& sprite) {
    const auto corners = cornerSamples(pages, sprite);
    if (!corners || !cornersAgree((*corners)[0], (*corners)[1], (*corners)[2], (*corners)[3]))
        return std::nullopt;
    return (*corners)[0];
}

PageArea swapWithZero(Pages& pages, const SpriteRec& sprite, std::uint8_t index) {
    if (sprite.page < 0 || sprite.page >= kMaxPages) return {};
    const int x0 = sprite.xo, x1 = std::min(sprite.xo + sprite.W, kPageSize);
    const int y0 = sprite.yo, y1 = std::min(sprite.yo + sprite.H, kPageSize);
    for (int y = y0; y < y1; ++y) {
        std::uint8_t* row = pages.row(sprite.page, y);
        for (int x = x0; x < x1; ++x) {
            if (row[x] == index)
                row[x] = 0;
            else if (row[x] == 0)
                row[x] = index;
        }
    }
    return {sprite.page, x0, y0, x1 - x0, y1 - y0};
}

const char* transparencyOutcomeWord(const TransparencyResult& fixed) {
    if (fixed) return *fixed == TransparencyDone::Corrected ? "corrected" : "already correct";
    switch (fixed.error().refusal) {
    case TransparencyRefusal::NoSprite:
        return "no sprite";
    case TransparencyRefusal::EightBit:
        return "refused";
    case TransparencyRefusal::Undetermined:
        return "undetermined";
    case TransparencyRefusal::Cancelled:
        return "cancelled";
    }
    return "?";
}

} // namespace torquil
