// Finding a sprite by its absolute number and selecting it on the board.

#include "sprites/sprite_info.h"

#include "platform/platform.h"
#include "sprites/selection.h"
#include "sprites/sprite_tables.h"
#include "style/pages.h"

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

SearchResult searchNSelect(const SpriteTables& sprites, Pages& pages, Selection& selection,
                           Platform& platform, int asn) {
    const auto hit = findSprite(sprites, pages.highestPage, asn);
    if (!hit) {
        platform.message("ASN:" + std::to_string(asn) + " not found.");
        return SearchResult::NotFound;
    }
    const auto [page, sib] = *hit;
    if (page > pages.gNumBlockLoaded) {
        platform.message("This sprite exists, but has not been loaded.\r"
                         "Load more blocks when you open the Style file.",
                         Buttons::Ok, Icon::Warning);
        return SearchResult::NotLoaded;
    }
    pages.gBoardOffset = static_cast<std::int16_t>(page * kPageSize);
    selection.page = page;
    selection.sib = sib;
    return SearchResult::Selected;
}

} // namespace torquil
