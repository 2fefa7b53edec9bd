// The sprite numbers record: how many sprites of each of the 21 types the section holds.

#include "sprites/sprite_info.h"

#include "base/binary_file.h"
#include "platform/format_context.h"
#include "platform/platform.h"
#include "sprites/sprite_tables.h"
#include "style/style_file.h"

#include <array>
#include <string>

namespace torquil {

bool loadSpriteNumbers(SpriteTables& sprites, const StyleFileState& style, BinaryFile& file,
                       FormatContext& ctx) {
    const PendingErrorScope fresh(ctx.errors);
    file.seek(style.gSeekSpriteNumbers);
    std::array<std::uint8_t, kSpriteNumbersBytes> bytes{};
    file.read(bytes);
    for (std::size_t k = 0; k < kSpriteTypes; ++k) {
        sprites.spriteNumbers[k] = getI16(&bytes[2 * k]);
        ctx.platform.detail(std::string(" ") + kSpriteTypeNames[k] + ": " +
                            std::to_string(sprites.spriteNumbers[k]));
    }
    return !ctx.errors.hasPending();
}

} // namespace torquil
