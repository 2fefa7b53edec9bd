// Pixel byte -> colour, for the board's painter and the BMP export.

#include "sprites/clut.h"

#include "sprites/colour_tables.h"
#include "sprites/sprite_tables.h"

namespace torquil {

namespace {
constexpr std::uint32_t rgb(std::uint8_t r, std::uint8_t g, std::uint8_t b) {
    return (std::uint32_t{r} << 16) | (std::uint32_t{g} << 8) | b;
}
bool clutLoaded(const ColourTables& colours, int physicalClut) {
    return physicalClut >= 0 &&
           (static_cast<std::size_t>(physicalClut) + 1) * 256 <= colours.pal24.size();
}
} // namespace

std::uint32_t spriteColour(const ColourTables& c, bool is24Bit, const SpriteRec& sprite,
                           std::uint8_t v) {
    if (!is24Bit) return rgb(c.red[v], c.green[v], c.blue[v]);
    if (!clutLoaded(c, sprite.clut)) return 0;
    const auto& e = c.pal24[static_cast<std::size_t>(sprite.clut) * 256 + v];
    return rgb(e[0], e[1], e[2]);
}

std::array<std::uint32_t, 256> clutColours(const ColourTables& colours, int physicalClut) {
    std::array<std::uint32_t, 256> out{};
    if (!clutLoaded(colours, physicalClut)) return out;
    const auto* e = &colours.pal24[static_cast<std::size_t>(physicalClut) * 256];
    for (std::size_t v = 0; v < 256; ++v) out[v] = rgb(e[v][0], e[v][1], e[v][2]);
    return out;
}

std::array<std::uint32_t, 256> palette8Colours(const ColourTables& colours) {
    std::array<std::uint32_t, 256> out{};
    for (std::size_t v = 0; v < 256; ++v)
        out[v] = rgb(colours.red[v], colours.green[v], colours.blue[v]);
    return out;
}

std::array<std::uint32_t, 256> spriteColours(const ColourTables& colours, bool is24Bit,
                                             const SpriteRec& sprite) {
    return is24Bit ? clutColours(colours, sprite.clut) : palette8Colours(colours);
}

} // namespace torquil
