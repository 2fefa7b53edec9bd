#include "session/board_lookup.h"

#include "session/style_session.h"

namespace torquil {

std::optional<std::pair<int, int>> hitTest(const StyleSession& session, int page, int x, int y) {
    if (page < 0 || page >= kMaxPages || x < 0 || x >= kPageSize || y < 0 || y >= kPageSize)
        return std::nullopt;
    const int sib = session.sprites.over(page, x, y);
    if (sib < 1 || sib >= static_cast<int>(session.sprites.pageSprites[page].size()))
        return std::nullopt;
    return std::make_pair(page, sib);
}

std::string describeAt(const StyleSession& session, int page, int x, int y) {
    const auto hit = hitTest(session, page, x, y);
    if (!hit) return {};
    const SpriteRec& rec =
        session.sprites
            .pageSprites[static_cast<std::size_t>(page)][static_cast<std::size_t>(hit->second)];
    std::string text = (rec.kind.empty() ? std::string("ASN") : rec.kind) + ":" +
                       std::to_string(rec.ASN) + " BLK:" + std::to_string(page) +
                       " SIB:" + std::to_string(hit->second) + " Size:" + std::to_string(rec.W) +
                       "x" + std::to_string(rec.H);
    if (session.style.gIs24Bit) text += " CLUT:" + std::to_string(rec.clut);
    const auto& slots = session.cars.slots;
    if (rec.kind.empty() && rec.ASN > 0 && rec.ASN < static_cast<int>(slots.size()) &&
        slots[static_cast<std::size_t>(rec.ASN)].inUse) {
        const CarEntry& car = slots[static_cast<std::size_t>(rec.ASN)];
        const std::string name = car.name.empty() ? session.names.nameOf(car.info.model) : car.name;
        text += " Model:" + std::to_string(car.info.model) + " Name:" + name;
    }
    return text;
}

} // namespace torquil
