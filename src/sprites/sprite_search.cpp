// Finding a sprite by its absolute number and selecting it on the board.

#include "sprites/sprite_info.h"

#include "platform/platform.h"
#include "session/style_session.h"

#include <algorithm>
#include <string>

namespace torquil {

std::optional<std::pair<int, int>> findSprite(const SpriteTables& sprites, int highestPage,
                                              int asn) {
    const int last = std::min(highestPage, kMaxPages - 1);
    for (int page = 0; page <= last; ++page) {
        const auto& list = sprites.pageSprites[static_cast<std::size_t>(page)];
        // From element 0, which is empty and has ASN 0, as the board's search always did.
        for (std::size_t sib = 0; sib < list.size(); ++sib)
            if (list[sib].ASN == asn) return std::make_pair(page, static_cast<int>(sib));
    }
    return std::nullopt;
}

SearchResult searchNSelect(StyleSession& s, Platform& platform, int asn) {
    const auto hit = findSprite(s.sprites, s.pages.highestPage, asn);
    if (!hit) {
        platform.message("ASN:" + std::to_string(asn) + " not found.");
        return SearchResult::NotFound;
    }
    const auto [page, sib] = *hit;
    if (page > s.pages.gNumBlockLoaded) {
        platform.message("This sprite exists, but has not been loaded.\r"
                         "Load more blocks when you open the Style file.",
                         Buttons::Ok, Icon::Warning);
        return SearchResult::NotLoaded;
    }
    s.pages.gBoardOffset = static_cast<std::int16_t>(page * kPageSize);
    s.selection.page = page;
    s.selection.sib = sib;
    return SearchResult::Selected;
}

} // namespace torquil
