#include "sprites/sprite_info_dump.h"

#include "sprites/sprite_head.h"

namespace torquil {

namespace {
std::string num(long long v) {
    return std::to_string(v);
}
} // namespace

std::vector<std::string> spriteDumpLines(int spriteNumber, std::int64_t headPosition,
                                         const SpriteHead& h, bool is24) {
    std::vector<std::string> lines;
    lines.emplace_back();
    lines.push_back("SPRITE:" + num(spriteNumber) + " FSEEK:" + num(headPosition));
    lines.push_back(" W:" + num(h.W) + " H:" + num(h.H) + " size:" + num(h.size) +
                    " deltas:" + num(h.delta_count));
    lines.push_back(" ws:" + num(h.ws) + " delta_count:" + num(h.delta_count));
    if (is24) {
        lines.push_back(" clut:" + num(h.clut) + " xo:" + num(h.xo) + " yo:" + num(h.yo) +
                        " page:" + num(h.page));
    } else {
        lines.push_back(" sprnfo.ptr:" + num(h.ptr));
        lines.push_back(" Calculated from ptr:  page:" + num(h.page) + " xo:" + num(h.xo) +
                        " yo:" + num(h.yo));
    }
    if (!h.sizeMatches()) lines.push_back("SIZE ERROR!");
    return lines;
}

std::vector<std::string> deltaDumpLines(int myDeltaRef, int delta, std::int16_t size,
                                        std::int32_t ptr) {
    return {" myDeltaRef:" + num(myDeltaRef),
            " delta:" + num(delta) + " size:" + num(size) + " ptr:" + num(ptr)};
}

} // namespace torquil
