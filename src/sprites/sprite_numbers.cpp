// The sprite numbers record: how many sprites of each of the 21 types the section holds.

#include "sprites/sprite_info.h"

#include "base/binary_file.h"
#include "platform/platform.h"
#include "session/style_session.h"

#include <array>
#include <string>

namespace torquil {

bool loadSpriteNumbers(StyleSession& s, BinaryFile& file, Platform& platform) {
    s.errors.clear();
    file.seek(s.style.gSeekSpriteNumbers);
    std::array<std::uint8_t, kSpriteNumbersBytes> bytes{};
    file.read(bytes);
    for (std::size_t k = 0; k < kSpriteTypes; ++k) {
        s.sprites.spriteNumbers[k] = getI16(&bytes[2 * k]);
        platform.detail(std::string(" ") + kSpriteTypeNames[k] + ": " +
                        std::to_string(s.sprites.spriteNumbers[k]));
    }
    return !s.errors.hasPending();
}

} // namespace torquil
