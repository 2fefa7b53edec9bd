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
class StyleSession;
struct SpriteTables;

inline constexpr int kSpriteNumbersBytes = 42; // 21 counts of 16 bits

// "Load Sprite Info": reads the section between gSeekSpriteInfo and gSeekSpriteInfoEnd.
bool loadSpriteInfo(StyleSession& session, BinaryFile& file, Platform& platform);
// "Load Sprite Numbers": the 21 counts at gSeekSpriteNumbers, one details line each.
bool loadSpriteNumbers(StyleSession& session, BinaryFile& file, Platform& platform);
// The tiles option: 16 tiles of 64 x 64 per page, built from the header's tile sizes.
bool calcTileSpriteInfo(StyleSession& session, BinaryFile& file, Platform& platform);

// (page, SIB) of the first sprite with this absolute number: lowest page, then lowest SIB, over
// pages 0 .. the highest page seen. Element 0 of each page list is looked at too, so ASN 0
// finds page 0, SIB 0.
std::optional<std::pair<int, int>> findSprite(const SpriteTables& sprites, int highestPage,
                                              int asn);

enum class SearchResult { NotFound, NotLoaded, Selected };
// Finds the sprite and selects it on the board (selection and gBoardOffset), or says why not.
SearchResult searchNSelect(StyleSession& session, Platform& platform, int asn);

} // namespace torquil
