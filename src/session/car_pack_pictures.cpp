#include "session/car_pack_pictures.h"

#include "session/style_session.h"
#include "sprites/clut.h"

#include <algorithm>

namespace torquil {

namespace {

// The 256 colours (0x00RRGGBB) of a physical CLUT as the bytes of a .G24 file hold them: colour
// v of CLUT c is the 4 bytes B, G, R, 0 at (c / 64) pages, row v, column c % 64 of the CLUT
// section. Colours past the file's end are black.
std::array<std::uint32_t, 256> clutInBytes(const StyleFileState& st,
                                           const std::vector<std::uint8_t>& style, int clut) {
    std::array<std::uint32_t, 256> out{};
    const std::int64_t page =
        clutSectionStart(st) - 1 + std::int64_t{clut / kClutsPerPage} * kPageBytes;
    const auto size = static_cast<std::int64_t>(style.size());
    for (int v = 0; v < 256; ++v) {
        const std::int64_t at = page + std::int64_t{v} * 256 + (clut % kClutsPerPage) * 4;
        if (at < 0 || at + 3 > size) continue;
        const auto* e = &style[static_cast<std::size_t>(at)];
        out[static_cast<std::size_t>(v)] =
            (std::uint32_t{e[2]} << 16) | (std::uint32_t{e[1]} << 8) | e[0];
    }
    return out;
}

} // namespace

CarPackPreview::Picture spritePicture(const StyleSession& session, const SpriteRec& sprite,
                                      const std::vector<std::uint8_t>& style) {
    CarPackPreview::Picture out;
    if (sprite.W <= 0 || sprite.H <= 0 || sprite.page < 0 || sprite.page >= kMaxPages ||
        session.style.gSeekGraphicsStart < 1)
        return out;
    const bool is24 = session.style.header.is24;
    const std::array<std::uint32_t, 256> colours =
        is24 ? clutInBytes(session.style, style, sprite.clut)
             : spriteColours(session.colours, false, sprite);
    out.width = sprite.W;
    out.height = sprite.H;
    out.argb.assign(static_cast<std::size_t>(out.width) * out.height, 0);
    const std::int64_t page =
        session.style.gSeekGraphicsStart - 1 + std::int64_t{sprite.page} * kPageBytes;
    const auto size = static_cast<std::int64_t>(style.size());
    for (int y = 0; y < sprite.H && sprite.yo + y < kPageSize; ++y)
        for (int x = 0; x < sprite.W && sprite.xo + x < kPageSize; ++x) {
            const std::int64_t at = page + std::int64_t{sprite.yo + y} * kPageSize + sprite.xo + x;
            const std::uint8_t v = at < size ? style[static_cast<std::size_t>(at)] : 0;
            if (v != 0)
                out.argb[static_cast<std::size_t>(y) * out.width + x] = 0xFF000000u | colours[v];
        }
    return out;
}

void addSpritePictures(CarPackPreview& preview, const StyleSession& session,
                       const std::vector<std::uint8_t>& styleBefore,
                       const std::vector<std::uint8_t>& styleAfter) {
    for (CarPackPreview::Sprite& s : preview.sprites) {
        if (s.asn <= 0 || s.page < 0 ||
            s.page >= static_cast<int>(session.sprites.pageSprites.size()))
            continue;
        const auto& page = session.sprites.pageSprites[static_cast<std::size_t>(s.page)];
        for (std::size_t sib = 1; sib < page.size(); ++sib) {
            if (page[sib].ASN != s.asn || !page[sib].kind.empty()) continue;
            s.before = spritePicture(session, page[sib], styleBefore);
            s.after = spritePicture(session, page[sib], styleAfter);
            break;
        }
    }
}

} // namespace torquil
