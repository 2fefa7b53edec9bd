#include "session/delta_count.h"

#include "session/sprite_layout.h"
#include "session/sprite_resize.h"
#include "session/style_session.h"

#include <algorithm>

namespace torquil {

namespace {

const SpriteRec* spriteNumbered(const StyleSession& session, int asn) {
    for (const SpriteRec* s : spritesInFileOrder(session.sprites))
        if (s->ASN == asn) return s;
    return nullptr;
}

std::string joined(const std::vector<int>& numbers) {
    std::string out;
    for (int n : numbers) out += (out.empty() ? "" : ", ") + std::to_string(n);
    return out;
}

} // namespace

DeltaCountPlan planDeltaCount(const StyleSession& session, int asn, int count) {
    DeltaCountPlan plan;
    const SpriteRec* sprite = spriteNumbered(session, asn);
    if (!sprite) {
        plan.why = "There is no sprite " + std::to_string(asn) + ".";
        return plan;
    }
    plan.from = static_cast<int>(sprite->deltas.size());
    plan.to = count;
    if (count < 0 || count > kMaxSpriteDeltas) {
        plan.why = "A sprite has at most 255 deltas (its record keeps the count in one byte).";
        return plan;
    }
    if (session.deltas.deltaCount + (count - plan.from) > kMaxStyleDeltas) {
        plan.why = "A style holds at most 32767 deltas (their numbers are 16-bit).";
        return plan;
    }
    for (int d = count; d < plan.from; ++d) plan.removed.push_back(d);
    const auto& cars = session.cars.slots;
    if (asn > 0 && static_cast<std::size_t>(asn) < cars.size() &&
        cars[static_cast<std::size_t>(asn)].inUse) {
        const auto& doors = cars[static_cast<std::size_t>(asn)].doorList;
        for (std::size_t i = 0; i < doors.size(); ++i)
            if (std::ranges::find(plan.removed, doors[i].delta) != plan.removed.end())
                plan.doorsOnRemoved.push_back(static_cast<int>(i) + 1);
    }
    plan.possible = true;
    return plan;
}

std::string describeDeltaCount(const DeltaCountPlan& plan, int asn) {
    std::string text = "Sprite " + std::to_string(asn) + " has " + std::to_string(plan.from) +
                       " deltas; the picture holds " + std::to_string(plan.to) + " frames.";
    if (!plan.possible) return text + "\r" + plan.why;
    if (plan.to > plan.from)
        text += "\r" + std::to_string(plan.to - plan.from) + " deltas are added at the end.";
    if (!plan.removed.empty()) text += "\rDeltas " + joined(plan.removed) + " are removed.";
    if (!plan.doorsOnRemoved.empty())
        text += "\rDoors " + joined(plan.doorsOnRemoved) +
                " show a removed delta and then show the sprite's last remaining delta.";
    return text;
}

void addSpriteDeltas(StyleSession& session, int asn, int count) {
    if (count <= 0) return;
    // Where the new entries go in the table: after the sprite's last delta, or after the deltas
    // of every sprite before it.
    std::int16_t at = 0;
    SpriteRec* sprite = nullptr;
    for (const SpriteRec* s : spritesInFileOrder(session.sprites)) {
        if (s->ASN == asn) {
            sprite = const_cast<SpriteRec*>(s);
            if (!s->deltas.empty()) at = static_cast<std::int16_t>(s->deltas.back() + 1);
            break;
        }
        if (!s->deltas.empty()) at = static_cast<std::int16_t>(s->deltas.back() + 1);
    }
    if (!sprite) return;
    for (auto& list : session.sprites.pageSprites)
        for (SpriteRec& s : list)
            for (std::int16_t& index : s.deltas)
                if (index >= at) index = static_cast<std::int16_t>(index + count);
    auto& table = session.deltas.myDeltas;
    // An empty table keeps a single element 0 that is no delta.
    if (session.deltas.deltaCount == 0) table.clear();
    const auto place = std::min<std::size_t>(static_cast<std::size_t>(at), table.size());
    DeltaRec empty;
    empty.runLine.assign(1, RunLine{}); // a delta without runs, as the loader keeps one
    table.insert(table.begin() + static_cast<std::ptrdiff_t>(place),
                 static_cast<std::size_t>(count), empty);
    for (int k = 0; k < count; ++k) sprite->deltas.push_back(static_cast<std::int16_t>(at + k));
    sprite->delta_count = static_cast<std::uint8_t>(sprite->deltas.size());
    session.deltas.deltaCount += count;
    session.style.gDeltasChanged = true;
    session.style.gLayoutChanged = true;
}

void applyDeltaCount(StyleSession& session, int asn, const DeltaCountPlan& plan) {
    if (!plan.possible) return;
    if (plan.to > plan.from) addSpriteDeltas(session, asn, plan.to - plan.from);
    if (!plan.removed.empty()) removeSpriteDeltas(session, asn, plan.removed);
}

} // namespace torquil
