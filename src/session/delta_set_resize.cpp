// The delta set import of a picture with another number of frames (declared with the other edits
// in session/edits.h): the frames the picture holds set the sprite's delta count first, then the
// frames are imported as usual, both as one step.

#include "session/edits.h"

#include "platform/platform.h"
#include "session/delta_count.h"
#include "session/edit_history.h"
#include "session/sprite_resize.h"
#include "session/style_session.h"

#include <array>

namespace torquil {

namespace {

// What a count change touches, to put back when the frames are refused afterwards.
struct CountSnapshot {
    std::array<std::vector<SpriteRec>, kMaxPages> pageSprites;
    DeltaTable deltas;
    std::vector<CarEntry> cars;
    DirtyMarks flags;

    explicit CountSnapshot(const StyleSession& s)
        : pageSprites(s.sprites.pageSprites), deltas(s.deltas), cars(s.cars.slots),
          flags(DirtyMarks::of(s.style)) {}
    void restore(StyleSession& s) const {
        s.sprites.pageSprites = pageSprites;
        s.deltas = deltas;
        s.cars.slots = cars;
        flags.applyTo(s.style);
    }
};

} // namespace

DeltaSetImport importDeltaSetResizing(StyleSession& session, Platform& platform,
                                      const std::filesystem::path& file, bool clean,
                                      const DeltaCountChoice& choice) {
    const SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return fail("No sprite is selected.");
    const std::optional<PictureSize> size = pictureSize(file);
    const int w = sprite->W, count = sprite->delta_count;
    // Pictures that do not change the count (or no change asked) go through the import as it is,
    // which refuses any other size with its message.
    if (!choice.setCount || !size || w == 0 || size->height != sprite->H || size->width <= 0 ||
        size->width % w != 0 || size->width / w == count)
        return importDeltaSet(session, platform, file, clean);

    const int asn = sprite->ASN;
    const DeltaCountPlan plan = planDeltaCount(session, asn, size->width / w);
    if (!plan.possible) {
        const std::string text = describeDeltaCount(plan, asn) + "\rNothing was changed.";
        platform.message(text, Buttons::Ok, Icon::Warning, "Import Delta Set");
        return fail(text);
    }
    if (!plan.doorsOnRemoved.empty() && !choice.dropUsed) {
        const std::string text = describeDeltaCount(plan, asn) +
                                 "\rNothing was changed: removing deltas that doors show was not "
                                 "allowed.";
        platform.message(text, Buttons::Ok, Icon::Warning, "Import Delta Set");
        return fail(text);
    }

    EditScope scope(session, kTouchAll, stepName("Import Delta Set", asn));
    const CountSnapshot before(session);
    applyDeltaCount(session, asn, plan);
    // No frames left: nothing to read, no run line replaced.
    DeltaSetImport result =
        plan.to == 0 ? DeltaSetImport(0) : importDeltaSet(session, platform, file, clean);
    if (!result) before.restore(session);
    if (result) session.style.gPagesChanged = true;
    return result;
}

} // namespace torquil

namespace torquil {

bool addDelta(StyleSession& session, Platform& platform) {
    const SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return false;
    const int asn = sprite->ASN;
    const DeltaCountPlan plan = planDeltaCount(session, asn, sprite->delta_count + 1);
    if (!plan.possible) {
        platform.message(describeDeltaCount(plan, asn) + "\rNothing was changed.", Buttons::Ok,
                         Icon::Warning, "Add Delta");
        return false;
    }
    EditScope scope(session, kTouchAll, stepName("Add Delta", asn));
    applyDeltaCount(session, asn, plan);
    return true;
}

bool removeDelta(StyleSession& session, Platform& platform, int index, bool dropUsed) {
    const SpriteRec* sprite = session.selectedSprite();
    if (!sprite || index < 0 || index >= sprite->delta_count) return false;
    const int asn = sprite->ASN;
    std::vector<int> doors;
    if (const CarEntry* car = session.cars.find(asn))
        for (std::size_t i = 0; i < car->doorList.size(); ++i)
            if (car->doorList[i].delta == index) doors.push_back(static_cast<int>(i) + 1);
    if (!doors.empty() && !dropUsed) {
        std::string list;
        for (int d : doors) list += (list.empty() ? "" : ", ") + std::to_string(d);
        platform.message("Delta " + std::to_string(index) + " of sprite " + std::to_string(asn) +
                             " is shown by door " + list + ".\rNothing was changed.",
                         Buttons::Ok, Icon::Warning, "Remove Delta");
        return false;
    }
    EditScope scope(session, kTouchAll, stepName("Remove Delta", asn));
    removeSpriteDeltas(session, asn, {index});
    return true;
}

} // namespace torquil
