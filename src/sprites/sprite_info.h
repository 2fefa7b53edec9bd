#pragma once
// Where every sprite lies: the sprite info section (per-page sprite lists, the mouse-over map and
// the delta reference table), the sprite numbers record, the tile regions of the tiles option,
// and finding a sprite by its absolute number.

#include <cstdint>
#include <optional>
#include <utility>

namespace torquil {

class BinaryFile;
class Platform;
struct ColourTables;
struct DeltaTable;
struct FormatContext;
struct Pages;
struct Selection;
struct SpriteTables;
struct StyleFileState;

inline constexpr int kSpriteNumbersBytes = 42; // 21 counts of 16 bits

// "Load Sprite Info": reads the section between gSeekSpriteInfo and gSeekSpriteInfoEnd into the
// sprite lists and mouse-over map, the delta reference table, the CLUT use counts and
// pages.highestPage.
[[nodiscard]] bool loadSpriteInfo(SpriteTables& sprites, ColourTables& colours, DeltaTable& deltas,
                                  Pages& pages, const StyleFileState& style, BinaryFile& file,
                                  FormatContext& ctx);
// "Load Sprite Numbers": the 21 counts at gSeekSpriteNumbers, one details line each.
[[nodiscard]] bool loadSpriteNumbers(SpriteTables& sprites, const StyleFileState& style,
                                     BinaryFile& file, FormatContext& ctx);
// The tiles option: 16 tiles of 64 x 64 per page, built from the header's tile sizes.
[[nodiscard]] bool calcTileSpriteInfo(SpriteTables& sprites, ColourTables& colours, Pages& pages,
                                      const StyleFileState& style, FormatContext& ctx);

// (page, SIB) of the first sprite with this absolute number: lowest page, then lowest SIB, over
// pages 0 .. the highest page seen. Element 0 of each page list is looked at too, so ASN 0
// finds page 0, SIB 0.
[[nodiscard]] [[nodiscard]] [[nodiscard]] [[nodiscard]] std::optional<std::pair<int, int>>
findSprite(const SpriteTables& sprites, int highestPage, int asn);

enum class SearchResult { NotFound, NotLoaded, Selected };
// Finds the sprite and selects it on the board (selection and gBoardOffset), or says why not.
[[nodiscard]] SearchResult searchNSelect(const SpriteTables& sprites, Pages& pages,
                                         Selection& selection, Platform& platform, int asn);

} // namespace torquil
