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
    EditScope scope(session, kTouchPages | kTouchCluts, stepName("Import Sprite", sprite->ASN));
    scope.touch(spriteRect(*sprite));
    const int clut = sprite->clut;
    const bool imported =
        file.empty() ? importSprite(session, platform) : importSpriteFrom(session, platform, file);
    if (!imported) scope.rename(stepName("Overwrite CLUT", clut)); // the palette may have changed
    return imported;
}

DeltaSetImport deltaSetImportEdit(StyleSession& session, Platform& platform,
                                  const std::filesystem::path& file, bool clean) {
    const SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return {};
    EditScope scope(session, kTouchPages | kTouchCluts | kTouchDeltas,
                    stepName("Import Delta Set", sprite->ASN));
    scope.touch(spriteRect(*sprite));
    const int clut = sprite->clut;
    const DeltaSetImport result = importDeltaSet(session, platform, file, clean);
    if (!result.imported) scope.rename(stepName("Overwrite CLUT", clut));
    return result;
}

TransparencyOutcome transparencyFixEdit(StyleSession& session, Platform& platform) {
    const SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return TransparencyOutcome::NoSprite;
    EditScope scope(session, kTouchPages | kTouchCluts, stepName("Transparency Fix", sprite->ASN));
    scope.touch(spriteRect(*sprite));
    return transparencyCorrect(session, platform);
}

bool carEdit(StyleSession& session, int asn, const std::function<void()>& accept) {
    EditScope scope(session, kTouchCars | kTouchNames, stepName("Edit Car", asn));
    accept();
    return scope.end();
}

} // namespace torquil
