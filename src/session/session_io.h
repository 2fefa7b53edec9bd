#pragma once
// The format routines called with a whole session: each takes the tables it works on from the
// session and runs the routine of its format folder. The load and save sequences, the window and
// the command line call these; the format folders themselves never see a session.
//
// Result convention of the core: loaders return true on success; savers return 0 or the
// run-time error number; other operations return true (or an outcome enum) and leave the reason
// in the session's ErrorState or in a message. Every result is [[nodiscard]].

#include "cars/car_info_io.h"
#include "cars/car_names_io.h"
#include "exchange/bmp.h"
#include "exchange/delta_io.h"
#include "exchange/palette_compare.h"
#include "exchange/remap_recolour.h"
#include "exchange/sprite_exchange.h"
#include "exchange/transparency.h"
#include "platform/format_context.h"
#include "session/style_session.h"
#include "sound/sound_bank.h"
#include "sound/sound_preview.h"
#include "sprites/clut.h"
#include "sprites/sprite_info.h"
#include "sprites/sprite_painter.h"
#include "style/page_io.h"

#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace torquil {

// The format context of a session: its error state, the platform and the program's options.
[[nodiscard]] inline FormatContext formatContext(StyleSession& session, Platform& platform) {
    return FormatContext{session.errors, platform, session.options};
}

// Pages: reads them and paints the page image; a page past the end clears the selection.
void loadBlocks(StyleSession& session, BinaryFile& file, Platform& platform,
                const PagePainter& painter);
[[nodiscard]] int savePages(StyleSession& session, BinaryFile& file, Platform& platform);
void repaintPages(StyleSession& session, const PagePainter& painter);
void repaintRect(StyleSession& session, const PagePainter& painter, int page, int x, int y, int w,
                 int h);

// Colour tables.
[[nodiscard]] bool loadCLUT(StyleSession& session, BinaryFile& file, Platform& platform);
[[nodiscard]] bool load8bitPal(StyleSession& session, BinaryFile& file, Platform& platform);
[[nodiscard]] int saveCLUT(StyleSession& session, BinaryFile& file, Platform& platform);
[[nodiscard]] std::uint32_t spriteColour(const StyleSession& session, const SpriteRec& sprite,
                                         std::uint8_t v);
[[nodiscard]] std::array<std::uint32_t, 256> spriteColours(const StyleSession& session,
                                                           const SpriteRec& sprite);
[[nodiscard]] BmpColourTable clutColourTable(StyleSession& session, int clut);
[[nodiscard]] BmpColourTable palette8ColourTable(const StyleSession& session);

// Sprites.
[[nodiscard]] bool loadSpriteInfo(StyleSession& session, BinaryFile& file, Platform& platform);
[[nodiscard]] bool loadSpriteNumbers(StyleSession& session, BinaryFile& file, Platform& platform);
[[nodiscard]] bool calcTileSpriteInfo(StyleSession& session, BinaryFile& file, Platform& platform);
// Finds the sprite and selects it on the board (selection and gBoardOffset), or says why not.
[[nodiscard]] SearchResult searchNSelect(StyleSession& session, Platform& platform, int asn);
[[nodiscard]] std::unique_ptr<PagePainter> makeSpritePagePainter(const StyleSession& session);

// Cars and their names.
[[nodiscard]] bool loadCarInfo(StyleSession& session, BinaryFile& file, Platform& platform);
[[nodiscard]] int saveCarInfo(StyleSession& session, BinaryFile& file, Platform& platform);
void dumpCarInfo(const StyleSession& session, Platform& platform, int asn);
[[nodiscard]] bool loadCarNames(StyleSession& session, BinaryFile& file, Platform& platform);
[[nodiscard]] bool buildCarNamesFxt(StyleSession& session, Platform& platform,
                                    std::vector<std::uint8_t>& fxt);
[[nodiscard]] bool saveCarNames(StyleSession& session, Platform& platform);

// Deltas.
[[nodiscard]] std::int64_t deltaStoreStart(const StyleSession& session);
[[nodiscard]] bool loadDeltas(StyleSession& session, BinaryFile& file, Platform& platform);
[[nodiscard]] int saveDeltas(StyleSession& session, BinaryFile& file, Platform& platform);

// Remaps of a car whose CLUT changed.
[[nodiscard]] int remapPaletteIndexPosition(const StyleSession& session, int carOrder, int slot);
[[nodiscard]] int autoCorrectRemaps(StyleSession& session, const SpriteRec& sprite);

// Sprite pictures.
[[nodiscard]] std::vector<std::uint8_t> spritePixels(const StyleSession& session,
                                                     const SpriteRec& sprite);
[[nodiscard]] TransparencyMask transparencyTest(const StyleSession& session,
                                                const SpriteRec& sprite);
[[nodiscard]] std::string bmpFileName(const StyleSession& session, const SpriteRec& sprite);
// The name for the board's selection; empty when nothing is selected.
[[nodiscard]] std::string bmpFileName(const StyleSession& session);
[[nodiscard]] bool writeBmp(StyleSession& session, Platform& platform,
                            const std::filesystem::path& file, std::span<const std::uint8_t> pixels,
                            int clut, int width, int height);
// Reads a BMP for a sprite drawn with CLUT `clut`; its palette is reconciled with the style's
// (comparePalette for a .G24 style, which may overwrite the CLUT; the fixed palette of a .GRY).
[[nodiscard]] bool readBmp(StyleSession& session, Platform& platform,
                           const std::filesystem::path& file, int clut, int width, int height,
                           std::vector<std::uint8_t>& pixels);
// Writes the selected sprite as workDir / bmpFileName(). Returns the full path of the file, or
// an empty path when nothing is selected or the file could not be written.
[[nodiscard]] std::filesystem::path exportSprite(StyleSession& session, Platform& platform);
// The same into a file of the caller's choosing (PNG when its name ends in .png); true when it
// was written.
[[nodiscard]] bool exportSpriteTo(StyleSession& session, Platform& platform,
                                  const std::filesystem::path& file);

// Sound bank of the session's level.
[[nodiscard]] std::filesystem::path sdtFilePath(const StyleSession& session);
[[nodiscard]] std::filesystem::path rawFilePath(const StyleSession& session);
[[nodiscard]] bool loadSDT(const StyleSession& session, SoundTable& table);
[[nodiscard]] SoundResult writeSoundWav(StyleSession& session, Platform& platform,
                                        std::int16_t soundNumber, double rateMultiplier,
                                        std::int16_t repeatCount, const std::filesystem::path& wav,
                                        SoundReading reading = SoundReading::Preview);
[[nodiscard]] SoundResult playSound(StyleSession& session, Platform& platform,
                                    std::int16_t soundNumber, double rateMultiplier,
                                    std::int16_t repeatCount);

} // namespace torquil
