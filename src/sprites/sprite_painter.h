#pragma once
// Paints pages in the colours of the sprites that own their pixels: each row is one owner
// lookup and one colour table lookup per pixel. A painter is a snapshot of the colour tables:
// make a new one after colours change. It reads the sprite tables' mouse-over map, so it must not
// outlive them.

#include "style/pages.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace torquil {

struct ColourTables;
struct SpriteTables;

class SpritePagePainter final : public PagePainter {
public:
    SpritePagePainter(const SpriteTables& sprites, const ColourTables& colours, bool is24Bit);
    void paintRow(int page, int y, const std::uint8_t* bytes, std::uint32_t* out) const override;

private:
    using Colours = std::array<std::uint32_t, 256>;
    const SpriteTables& sprites_;
    // Distinct colour tables; element 0 is the background (unowned pixels).
    std::vector<Colours> colours_;
    // Per page, per SIB: the sprite's colour table (SIB 0 points at the background).
    std::array<std::vector<const std::uint32_t*>, kMaxPages> bySib_;
};

[[nodiscard]] std::unique_ptr<PagePainter>
makeSpritePagePainter(const SpriteTables& sprites, const ColourTables& colours, bool is24Bit);

} // namespace torquil
