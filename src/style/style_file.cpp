#include "style/style_file.h"

#include "style/rounding.h"

namespace torquil {

void locateSpriteSections(StyleFileState& s) {
    const StyleHeader& h = s.header;
    const std::int64_t L = s.fileLength;
    // Sums in 64 bits: a hostile header cannot overflow them.
    const std::int64_t numbers = h.sprite_numbers_size();
    const std::int64_t graphics = h.sprite_graphics_size();
    const std::int64_t spriteInfo = h.sprite_info_size();
    const std::int64_t carInfo = h.car_info_size();
    s.gSeekCarInfo = L - (carInfo + spriteInfo + graphics + numbers) + 1;
    s.gSeekCarInfoEnd = s.gSeekCarInfo + carInfo;
    s.gSeekGraphicsStart = L - (graphics + numbers) + 1;
    s.gSeekGraphicsEnd = s.gSeekGraphicsStart + graphics;
    s.gSeekSpriteInfo = L - (spriteInfo + graphics + numbers) + 1;
    s.gSeekSpriteInfoEnd = s.gSeekSpriteInfo + spriteInfo;
    s.gSeekSpriteNumbers = L - numbers + 1;
}

void locateTileSections(StyleFileState& s) {
    const StyleHeader& h = s.header;
    s.gSeekCarInfo = s.gSeekCarInfoEnd = 0;
    s.gSeekSpriteInfo = s.gSeekSpriteInfoEnd = 0;
    s.gSeekGraphicsStart = h.headSize() + 1;
    // The rounding applies to the 1-based position and the anim size is taken off after it:
    // that is where the tile pages of the game's files end.
    s.gSeekGraphicsEnd = roundUp16384(s.gSeekGraphicsStart + std::int64_t{h.side_size()} +
                                      h.lid_size() + h.aux_size()) -
                         h.anim_size();
    s.gSeekSpriteNumbers = s.fileLength - h.sprite_numbers_size() + 1;
}

} // namespace torquil
