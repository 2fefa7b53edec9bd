#include "session/session_io.h"

#include "platform/platform.h"
#include "session/edits.h"
#include "session/picture_file.h"

namespace torquil {

void loadBlocks(StyleSession& s, BinaryFile& file, Platform& platform, const PagePainter& painter) {
    if (!loadBlocks(s.pages, s.image, s.style, file, platform, painter)) s.selection.clear();
}

int savePages(StyleSession& s, BinaryFile& file, Platform& platform) {
    return savePages(s.pages, s.style, file, s.errors, platform);
}

void repaintPages(StyleSession& s, const PagePainter& painter) {
    repaintPages(s.pages, s.image, painter);
}

void repaintRect(StyleSession& s, const PagePainter& painter, int page, int x, int y, int w,
                 int h) {
    repaintRect(s.pages, s.image, painter, page, x, y, w, h);
}

bool loadCLUT(StyleSession& s, BinaryFile& file, Platform& platform) {
    FormatContext ctx = formatContext(s, platform);
    return loadCLUT(s.colours, s.style, file, ctx);
}

bool load8bitPal(StyleSession& s, BinaryFile& file, Platform& platform) {
    FormatContext ctx = formatContext(s, platform);
    return load8bitPal(s.colours, s.style, file, ctx);
}

int saveCLUT(StyleSession& s, BinaryFile& file, Platform& platform) {
    FormatContext ctx = formatContext(s, platform);
    return saveCLUT(s.colours, s.style, file, ctx);
}

std::uint32_t spriteColour(const StyleSession& s, const SpriteRec& sprite, std::uint8_t v) {
    return spriteColour(s.colours, s.style.gIs24Bit, sprite, v);
}

std::array<std::uint32_t, 256> spriteColours(const StyleSession& s, const SpriteRec& sprite) {
    return spriteColours(s.colours, s.style.gIs24Bit, sprite);
}

BmpColourTable clutColourTable(StyleSession& s, int clut) {
    return clutColourTable(s.colours, s.errors, clut);
}

BmpColourTable palette8ColourTable(const StyleSession& s) {
    return palette8ColourTable(s.colours);
}

bool loadSpriteInfo(StyleSession& s, BinaryFile& file, Platform& platform) {
    FormatContext ctx = formatContext(s, platform);
    return loadSpriteInfo(s.sprites, s.colours, s.deltas, s.pages, s.style, file, ctx);
}

bool loadSpriteNumbers(StyleSession& s, BinaryFile& file, Platform& platform) {
    FormatContext ctx = formatContext(s, platform);
    return loadSpriteNumbers(s.sprites, s.style, file, ctx);
}

bool calcTileSpriteInfo(StyleSession& s, BinaryFile&, Platform& platform) {
    FormatContext ctx = formatContext(s, platform);
    return calcTileSpriteInfo(s.sprites, s.colours, s.pages, s.style, ctx);
}

SearchResult searchNSelect(StyleSession& s, Platform& platform, int asn) {
    return searchNSelect(s.sprites, s.pages, s.selection, platform, asn);
}

std::unique_ptr<PagePainter> makeSpritePagePainter(const StyleSession& s) {
    return makeSpritePagePainter(s.sprites, s.colours, s.style.gIs24Bit);
}

bool loadCarInfo(StyleSession& s, BinaryFile& file, Platform& platform) {
    FormatContext ctx = formatContext(s, platform);
    return loadCarInfo(s.cars, s.names, s.sprites, s.style, file, ctx);
}

int saveCarInfo(StyleSession& s, BinaryFile& file, Platform& platform) {
    FormatContext ctx = formatContext(s, platform);
    return saveCarInfo(s.cars, s.style, file, ctx);
}

void dumpCarInfo(const StyleSession& s, Platform& platform, int asn) {
    dumpCarInfo(s.cars, platform, asn);
}

bool loadCarNames(StyleSession& s, BinaryFile&, Platform& platform) {
    FormatContext ctx = formatContext(s, platform);
    return loadCarNames(s.names, s.style, ctx);
}

bool buildCarNamesFxt(StyleSession& s, Platform& platform, std::vector<std::uint8_t>& fxt) {
    FormatContext ctx = formatContext(s, platform);
    return buildCarNamesFxt(s.names, s.style, ctx, fxt);
}

bool saveCarNames(StyleSession& s, Platform& platform) {
    FormatContext ctx = formatContext(s, platform);
    return saveCarNames(s.names, s.style, ctx);
}

std::int64_t deltaStoreStart(const StyleSession& s) {
    return deltaStoreStart(s.style);
}

bool loadDeltas(StyleSession& s, BinaryFile& file, Platform& platform) {
    FormatContext ctx = formatContext(s, platform);
    return loadDeltas(s.deltas, s.style, file, ctx);
}

int saveDeltas(StyleSession& s, BinaryFile& file, Platform& platform) {
    FormatContext ctx = formatContext(s, platform);
    return saveDeltas(s.deltas, s.style, file, ctx);
}

int remapPaletteIndexPosition(const StyleSession& s, int carOrder, int slot) {
    return remapPaletteIndexPosition(s.style.header.g24, carOrder, slot);
}

int autoCorrectRemaps(StyleSession& s, const SpriteRec& sprite) {
    return autoCorrectRemaps(s.colours, s.cars, s.style, sprite);
}

std::vector<std::uint8_t> spritePixels(const StyleSession& s, const SpriteRec& sprite) {
    return spritePixels(s.pages, sprite);
}

TransparencyMask transparencyTest(const StyleSession& s, const SpriteRec& sprite) {
    return transparencyTest(s.pages, sprite);
}

std::string bmpFileName(const StyleSession& s, const SpriteRec& sprite) {
    return bmpFileName(s.style, s.cars, s.sprites, sprite);
}

std::string bmpFileName(const StyleSession& s) {
    const SpriteRec* sprite = s.selectedSprite();
    return sprite ? bmpFileName(s, *sprite) : std::string{};
}

bool writeBmp(StyleSession& s, Platform& platform, const std::filesystem::path& file,
              std::span<const std::uint8_t> pixels, int clut, int width, int height) {
    FormatContext ctx = formatContext(s, platform);
    return writeBmp(s.colours, s.style, file, pixels, clut, width, height, ctx);
}

bool readBmp(StyleSession& s, Platform& platform, const std::filesystem::path& file, int clut,
             int width, int height, std::vector<std::uint8_t>& pixels) {
    FormatContext ctx = formatContext(s, platform);
    const auto accept = [&](const BmpColourTable& imported) {
        return s.style.gIs24Bit ? comparePalette(s, platform, clut, imported)
                                : acceptGryPalette(s.colours, platform, imported);
    };
    return readBmp(file, width, height, pixels, ctx, accept);
}

std::filesystem::path exportSprite(StyleSession& s, Platform& platform) {
    const SpriteRec* sprite = s.selectedSprite();
    if (!sprite) return {};
    const std::filesystem::path file = s.workPath(bmpFileName(s, *sprite));
    return exportSpriteTo(s, platform, file) ? file : std::filesystem::path{};
}

bool exportSpriteTo(StyleSession& s, Platform& platform, const std::filesystem::path& file) {
    const SpriteRec* sprite = s.selectedSprite();
    if (!sprite) return false;
    platform.progress().open("Exporting", file.filename().string(), std::max(0, sprite->H - 1));
    const bool written = writePicture(s, platform, file, spritePixels(s, *sprite), sprite->clut,
                                      sprite->W, sprite->H);
    platform.progress().close();
    return written;
}

std::filesystem::path sdtFilePath(const StyleSession& s) {
    return sdtFilePath(s.style);
}

std::filesystem::path rawFilePath(const StyleSession& s) {
    return rawFilePath(s.style);
}

bool loadSDT(const StyleSession& s, SoundTable& table) {
    return loadSDT(s.style, table);
}

SoundResult writeSoundWav(StyleSession& s, Platform& platform, std::int16_t soundNumber,
                          double rateMultiplier, std::int16_t repeatCount,
                          const std::filesystem::path& wav, SoundReading reading) {
    FormatContext ctx = formatContext(s, platform);
    return writeSoundWav(s.style, ctx, soundNumber, rateMultiplier, repeatCount, wav, reading);
}

SoundResult playSound(StyleSession& s, Platform& platform, std::int16_t soundNumber,
                      double rateMultiplier, std::int16_t repeatCount) {
    FormatContext ctx = formatContext(s, platform);
    return playSound(s.style, ctx, soundNumber, rateMultiplier, repeatCount);
}

} // namespace torquil
