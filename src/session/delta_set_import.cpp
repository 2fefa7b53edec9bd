// The delta set import (declared with the other edits in session/edits.h).

#include "session/edits.h"

#include "exchange/delta_frame_edit.h"
#include "exchange/sprite_exchange.h"
#include "platform/platform.h"
#include "session/delta_sets.h"
#include "session/edit_history.h"
#include "session/picture_file.h"
#include "session/session_io.h"
#include "session/style_session.h"

#include <algorithm>
#include <string>

namespace torquil {

namespace {

// Gives delta table entries new run lines and marks the pages and deltas changed, so that the save
// sequence rewrites the delta store. Entries outside the table leave everything alone (false).
bool setDeltaRuns(StyleSession& session,
                  std::vector<std::pair<int, std::vector<RunLine>>> replacements) {
    DeltaTable& table = session.deltas;
    const int limit = std::min<int>(table.deltaCount, static_cast<int>(table.myDeltas.size()));
    for (const auto& [index, runs] : replacements)
        if (index < 0 || index >= limit) return false;
    for (auto& [index, runs] : replacements)
        table.myDeltas[static_cast<std::size_t>(index)].runLine = std::move(runs);
    // The save sequence writes the pages and then the delta store behind them.
    session.style.gPagesChanged = true;
    session.style.gDeltasChanged = true;
    return true;
}

// The import itself; any refusal returns with the deltas as they were (the CLUT may be
// overwritten).
DeltaSetImport readDeltaSet(StyleSession& session, Platform& platform,
                            const std::filesystem::path& file, bool clean) {
    const Failure notRead = fail("The delta set " + file.string() + " was not imported.");
    const SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return fail("No sprite is selected.");
    const std::vector<const DeltaRec*> deltas = spriteDeltas(session, *sprite);
    if (deltas.empty() || sprite->W == 0 || sprite->H == 0) {
        const std::string text =
            "Sprite " + std::to_string(sprite->ASN) + " has no deltas to import.";
        platform.message(text, Buttons::Ok, Icon::Information);
        return fail(text);
    }
    for (std::size_t k = 0; k < deltas.size(); ++k) {
        if (!deltas[k]) {
            const std::string text = "Delta " + std::to_string(k) + " of sprite " +
                                     std::to_string(sprite->ASN) + " is not in the delta table.";
            platform.message(text, Buttons::Ok, Icon::Warning);
            return fail(text);
        }
    }
    const int w = sprite->W, h = sprite->H;
    const int count = static_cast<int>(deltas.size());

    ProgressSink& progress = platform.progress();
    progress.open("Importing", file.filename().string(), std::max(0, h - 1));
    std::vector<std::uint8_t> picture;
    const bool read = readPicture(session, platform, file, sprite->clut, w * count, h, picture);
    progress.close();
    if (!read) return notRead; // the picture's refusal was shown
    // The palette question may have changed the CLUT; the sprite record itself is unchanged.
    sprite = session.selectedSprite();
    if (!sprite) return notRead;

    const std::vector<std::uint8_t> spritePx = spritePixels(session, *sprite);
    const std::vector<std::uint8_t> base =
        clean ? std::vector<std::uint8_t>(spritePx.size(), 0) : spritePx;
    std::vector<std::pair<int, std::vector<RunLine>>> replacements;
    for (int i = 0; i < count; ++i) {
        const std::vector<std::uint8_t> frame = deltaSetFrame(picture, w, h, i);
        std::vector<std::uint8_t> current = base;
        drawDelta(*deltas[static_cast<std::size_t>(i)], w, h, current);
        if (frame == current) continue; // unchanged: the run lines stay exactly as they are
        // Only what differs from the export changes: a clean sheet's colour-0 delta pixels look
        // like the background and stay.
        FrameRuns runs =
            runsFromEditedFrame(*deltas[static_cast<std::size_t>(i)], base, frame, w, h);
        if (!runs.ok) {
            const std::string text = "Delta " + std::to_string(i) + " (frame " +
                                     std::to_string(i + 1) + " of " + std::to_string(count) +
                                     ") cannot be imported: " + runs.reason +
                                     ".\rNothing was changed.";
            platform.message(text, Buttons::Ok, Icon::Warning, "Import Delta Set");
            return fail(text);
        }
        replacements.emplace_back(sprite->deltas[static_cast<std::size_t>(i)],
                                  std::move(runs.runs));
    }
    const int changed = static_cast<int>(replacements.size());
    if (!setDeltaRuns(session, std::move(replacements))) return notRead;
    return changed;
}

} // namespace

DeltaSetImport importDeltaSet(StyleSession& session, Platform& platform,
                              const std::filesystem::path& file, bool clean) {
    const SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return fail("No sprite is selected.");
    EditScope scope(session, kTouchPages | kTouchCluts | kTouchDeltas,
                    stepName("Import Delta Set", sprite->ASN));
    scope.touch(spriteArea(*sprite));
    const int clut = sprite->clut;
    const DeltaSetImport result = readDeltaSet(session, platform, file, clean);
    // A refused picture may still have overwritten the CLUT.
    if (!result) scope.rename(stepName("Overwrite CLUT", clut));
    return result;
}

} // namespace torquil
