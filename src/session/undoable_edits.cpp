#include "session/undoable_edits.h"

#include "exchange/sprite_exchange.h"
#include "session/edit_history.h"
#include "session/style_session.h"

#include <algorithm>

namespace torquil {

namespace {

// The sprite's rectangle on its page, where the edits paint it.
PageArea spriteRect(const SpriteRec& s) {
    return {s.page, s.xo, s.yo, std::min<int>(s.W, kPageSize - s.xo),
            std::min<int>(s.H, kPageSize - s.yo)};
}

} // namespace

std::string stepName(const char* what, int number) {
    return std::string(what) + " " + std::to_string(number);
}

bool importSpriteEdit(StyleSession& session, Platform& platform,
                      const std::filesystem::path& file) {
    const SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return false;
    const int asn = sprite->ASN, clut = sprite->clut;
    EditRecorder recorder(session, kTouchPages | kTouchCluts);
    recorder.touch(spriteRect(*sprite));
    const bool imported =
        file.empty() ? importSprite(session, platform) : importSpriteFrom(session, platform, file);
    EditStep step = recorder.finish(session, imported ? stepName("Import Sprite", asn)
                                                      : stepName("Overwrite CLUT", clut));
    session.history.push(std::move(step));
    return imported;
}

TransparencyOutcome transparencyFixEdit(StyleSession& session, Platform& platform) {
    const SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return TransparencyOutcome::NoSprite;
    const int asn = sprite->ASN;
    EditRecorder recorder(session, kTouchPages | kTouchCluts);
    recorder.touch(spriteRect(*sprite));
    const TransparencyOutcome outcome = transparencyCorrect(session, platform);
    session.history.push(recorder.finish(session, stepName("Transparency Fix", asn)));
    return outcome;
}

bool carEdit(StyleSession& session, int asn, const std::function<void()>& accept) {
    EditRecorder recorder(session, kTouchCars | kTouchNames);
    accept();
    return session.history.push(recorder.finish(session, stepName("Edit Car", asn)));
}

} // namespace torquil
