#include "exchange/remap_recolour.h"

#include "cars/car_info.h"
#include "cars/remap_colours.h"
#include "sprites/clut.h"
#include "sprites/colour_tables.h"
#include "sprites/sprite_tables.h"
#include "style/style_file.h"

#include <cmath>

namespace torquil {

namespace {

// 0-based place of the car's record in the car info section.
int carOrderOf(const CarTable& cars, const CarEntry& car) {
    int order = 0;
    for (const CarEntry& other : cars.slots)
        if (other.inUse && other.fileSeek < car.fileSeek) ++order;
    return order;
}

} // namespace

int remapPaletteIndexPosition(const G24Header& h, int carOrder, int slot) {
    const auto spriteEntries =
        static_cast<int>(std::lround(static_cast<double>(h.spriteclut_size) / kClutBytes));
    return tileClutCount(h) + spriteEntries + carOrder * kRemapCount + slot;
}

int autoCorrectRemaps(ColourTables& colours, const CarTable& cars, const StyleFileState& style,
                      const SpriteRec& sprite) {
    const auto& slots = cars.slots;
    if (!style.gIs24Bit || sprite.ASN <= 0 || sprite.ASN >= static_cast<int>(slots.size()) ||
        !slots[sprite.ASN].inUse)
        return 0;
    const CarEntry& car = slots[sprite.ASN];
    const long long clutCount = static_cast<long long>(colours.pal24.size()) / 256;
    const int base = sprite.clut;
    if (base < 0 || base >= clutCount) return 0;

    const ClutColours baseColours = clutColours(colours, base);
    const int order = carOrderOf(cars, car);
    int recoloured = 0;
    for (int slot = 0; slot < kRemapCount; ++slot) {
        const int pos = remapPaletteIndexPosition(style.header.g24, order, slot);
        if (pos < 0 || pos >= kPalIndexEntries || pos >= colours.palIndexCount) continue;
        const int target = colours.PalIndex[static_cast<std::size_t>(pos)];
        if (target < 0 || target >= clutCount || target == base) continue;
        if (target < static_cast<int>(colours.used.size()) && colours.used[target] != 0) continue;
        const ClutColours remapped =
            remapClut(baseColours, car.info.remap24[static_cast<std::size_t>(slot)]);
        for (int c = 0; c < 256; ++c) {
            const std::uint32_t rgb = remapped[static_cast<std::size_t>(c)];
            colours.entry(target, c) = {static_cast<std::uint8_t>(rgb >> 16),
                                        static_cast<std::uint8_t>(rgb >> 8),
                                        static_cast<std::uint8_t>(rgb)};
        }
        ++recoloured;
    }
    return recoloured;
}

} // namespace torquil
