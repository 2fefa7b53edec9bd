// The tiles option: the tile pages hold 16 tiles of 64 x 64 each, side tiles first, then lid and
// aux tiles; their hover regions and colours are worked out from the header alone.

#include "sprites/sprite_info.h"

#include "base/checked.h"
#include "platform/format_context.h"
#include "platform/platform.h"
#include "platform/progress_scope.h"
#include "sprites/colour_tables.h"
#include "sprites/sprite_tables_reset.h"
#include "style/pages.h"
#include "style/style_file.h"

#include <algorithm>
#include <limits>

namespace torquil {

namespace {

constexpr int kTileSize = 64;
constexpr int kTileBytes = kTileSize * kTileSize;

std::int64_t floorDiv(std::int64_t a, std::int64_t b) {
    const std::int64_t q = a / b;
    return (a % b != 0 && a < 0) ? q - 1 : q;
}

const char* tileKind(std::int64_t n, std::int64_t side, std::int64_t lidLimit,
                     std::int64_t auxLimit) {
    if (n <= side) return "sideTile";
    if (n <= lidLimit) return "lidTile";
    if (n <= auxLimit) return "auxTile";
    return nullptr;
}

} // namespace

bool calcTileSpriteInfo(SpriteTables& t, ColourTables& colours, Pages& pages,
                        const StyleFileState& style, FormatContext& ctx) {
    ErrorState& errors = ctx.errors;
    Platform& platform = ctx.platform;
    resetSpriteTables(t);

    const std::int64_t highest =
        floorDiv(style.gSeekGraphicsEnd - style.gSeekGraphicsStart, kPageBytes);
    pages.highestPage = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(highest, std::numeric_limits<std::int32_t>::min(),
                                 std::numeric_limits<std::int32_t>::max()));
    const StyleHeader& h = style.header;
    const std::int64_t side = floorDiv(h.side_size(), kTileBytes);
    const std::int64_t lidLimit = side + floorDiv(h.lid_size(), kTileBytes);
    const std::int64_t auxLimit = lidLimit + floorDiv(h.aux_size(), kTileBytes);

    ProgressScope progress(platform.progress(), "Calculating SpriteInfo", "Build MouseOvers...",
                           static_cast<int>(std::clamp<std::int64_t>(highest, 0, 1 << 30)));
    std::int64_t n = 0;
    for (std::int64_t page = 0; page <= highest; ++page) {
        progress.setValue(static_cast<int>(std::min<std::int64_t>(page, 1 << 30)));
        int i = 0;
        for (int y = 0; y < kPageSize; y += kTileSize) {
            for (int x = 0; x < kPageSize; x += kTileSize) {
                ++i;
                ++n;
                const char* kind = tileKind(n, side, lidLimit, auxLimit);
                if (!kind) continue;
                auto& list = checkedAt(t.pageSprites, page, errors, "pageSprites");
                if (errors.hasPending()) return false;
                list.resize(static_cast<std::size_t>(i) + 1);
                SpriteRec& rec = list[static_cast<std::size_t>(i)];
                rec.xo = static_cast<std::uint8_t>(x);
                rec.yo = static_cast<std::uint8_t>(y);
                rec.ASN = static_cast<std::int16_t>(n);
                rec.W = rec.H = kTileSize;
                rec.kind = kind;
                rec.page = static_cast<std::int16_t>(page);
                if (style.gIs24Bit) {
                    // Four palette index entries per tile; the first is the tile's own CLUT.
                    rec.palPos = static_cast<std::int16_t>((n - 1) * 4);
                    rec.clut = checkedAt(colours.PalIndex, (n - 1) * 4, errors, "PalIndex");
                    ++checkedAt(colours.used, rec.clut, errors, "CLUT use count");
                    if (errors.hasPending()) return false;
                }
                for (int cy = y; cy < y + kTileSize; ++cy) {
                    std::int16_t* row = &t.over(static_cast<int>(page), 0, cy);
                    std::fill(row + x, row + x + kTileSize, static_cast<std::int16_t>(i));
                }
            }
        }
    }
    return !errors.hasPending();
}

} // namespace torquil
