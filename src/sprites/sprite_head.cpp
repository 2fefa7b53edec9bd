#include "sprites/sprite_head.h"

#include "base/binary_file.h"
#include "base/runtime_error.h"

#include <string>

namespace torquil {

namespace {
// floor(a / b) for b > 0, also for a negative a.
std::int64_t floorDiv(std::int64_t a, std::int64_t b) {
    const std::int64_t q = a / b;
    return (a % b != 0 && a < 0) ? q - 1 : q;
}
} // namespace

SpriteHead decodeSpriteHead(std::span<const std::uint8_t> b, bool is24, ErrorState& errors) {
    SpriteHead h;
    h.W = b[0];
    h.H = b[1];
    h.delta_count = b[2];
    h.ws = b[3];
    h.size = getI16(&b[4]);
    h.ptr = getI32(&b[6]);
    if (is24) {
        h.clut = getI16(&b[6]);
        h.xo = b[8];
        h.yo = b[9];
        h.page = getI16(&b[10]);
        return h;
    }
    // ptr = page * 65536 + y * 256 + x; the remainders keep the sign of the dividend.
    const std::int64_t ptr = h.ptr;
    h.page = static_cast<std::int32_t>(floorDiv(ptr, 65536));
    const std::int64_t inPage = ptr % 65536;
    const std::int64_t yo = floorDiv(inPage, 256);
    const std::int64_t xo = inPage % 256;
    if (xo < 0 || yo < 0) {
        errors.raise(err::Overflow, "sprite ptr " + std::to_string(ptr));
        return h;
    }
    h.xo = static_cast<std::uint8_t>(xo);
    h.yo = static_cast<std::uint8_t>(yo);
    return h;
}

} // namespace torquil
