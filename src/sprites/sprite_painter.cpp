#include "sprites/sprite_painter.h"

#include "sprites/clut.h"
#include "sprites/colour_tables.h"
#include "sprites/sprite_tables.h"
#include "style/style_file.h"

namespace torquil {

SpritePagePainter::SpritePagePainter(const SpriteTables& sprites, const ColourTables& colours,
                                     bool is24)
    : sprites_(sprites) {
    Colours background;
    background.fill(is24 ? kDarkGrey : kBlack);
    colours_.push_back(background);

    // First the table index of every sprite (one table per physical CLUT in use), then the
    // pointers, once colours_ no longer moves.
    std::array<std::vector<std::size_t>, kMaxPages> index;
    std::vector<std::size_t> tableOfClut(
        static_cast<std::size_t>(std::max(0, colours.gClutsAvail)) + 1, 0);
    if (!is24) colours_.push_back(palette8Colours(colours));
    for (std::size_t page = 0; page < kMaxPages; ++page) {
        const auto& list = sprites_.pageSprites[page];
        index[page].assign(list.size(), 0);
        for (std::size_t sib = 1; sib < list.size(); ++sib) {
            if (!is24) {
                index[page][sib] = 1;
                continue;
            }
            const int clut = list[sib].clut;
            if (clut < 0 || static_cast<std::size_t>(clut) >= tableOfClut.size()) {
                // A CLUT the table does not hold paints black, like spriteColour().
                index[page][sib] = colours_.size();
                colours_.push_back(Colours{});
                continue;
            }
            std::size_t& table = tableOfClut[static_cast<std::size_t>(clut)];
            if (table == 0) {
                table = colours_.size();
                colours_.push_back(clutColours(colours, clut));
            }
            index[page][sib] = table;
        }
    }
    for (std::size_t page = 0; page < kMaxPages; ++page) {
        bySib_[page].resize(index[page].size());
        for (std::size_t sib = 0; sib < index[page].size(); ++sib)
            bySib_[page][sib] = colours_[index[page][sib]].data();
    }
}

void SpritePagePainter::paintRow(int page, int y, const std::uint8_t* bytes,
                                 std::uint32_t* out) const {
    if (page < 0 || page >= kMaxPages || y < 0 || y >= kPageSize) return;
    const auto& tables = bySib_[static_cast<std::size_t>(page)];
    const std::uint32_t* background = colours_[0].data();
    const std::size_t count = tables.size();
    // mouseOver keeps each page row by row: the row's owners are contiguous.
    const std::int16_t* owner =
        sprites_.mouseOver.data() + (static_cast<std::size_t>(page) * kPageSize + y) * kPageSize;
    // One owner lookup and one colour lookup per pixel; SIB 0 leads to the background table.
    for (int x = 0; x < kPageSize; ++x) {
        const auto sib = static_cast<std::size_t>(static_cast<std::uint16_t>(owner[x]));
        out[x] = (sib < count ? tables[sib] : background)[bytes[x]];
    }
}

std::unique_ptr<PagePainter> makeSpritePagePainter(const SpriteTables& sprites,
                                                   const ColourTables& colours, bool is24Bit) {
    return std::make_unique<SpritePagePainter>(sprites, colours, is24Bit);
}

} // namespace torquil
