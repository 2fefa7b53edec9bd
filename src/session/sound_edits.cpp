#include "session/sound_edits.h"

#include "base/atomic_file.h"
#include "session/file_backups.h"
#include "session/style_session.h"

namespace torquil {

namespace {

Result<void> keepSoundBackup(const std::filesystem::path& file) {
    const ReplaceResult kept = processBackups().ensureBackup(file);
    if (kept) return {};
    return fail("Cannot keep the unmodified " + file.string(), describeCause(kept.error().code));
}

} // namespace

std::string SoundHistory::undoName() const {
    return canUndo() ? "Replace Sound " + std::to_string(steps[cursor - 1].number) : std::string{};
}

std::string SoundHistory::redoName() const {
    return canRedo() ? "Replace Sound " + std::to_string(steps[cursor].number) : std::string{};
}

SoundResult importSound(StyleSession& session, Platform& platform, int number,
                        const std::filesystem::path& file) {
    SoundReplacement change;
    SoundResult outcome =
        importSoundFile(session.style, platform, number, file, keepSoundBackup, change);
    if (outcome) {
        SoundHistory& history = session.soundHistory;
        history.steps.resize(history.cursor);
        history.steps.push_back(change);
        history.cursor = history.steps.size();
    }
    return outcome;
}

bool undoSoundImport(StyleSession& session, Platform& platform) {
    SoundHistory& history = session.soundHistory;
    if (!history.canUndo()) return false;
    if (!setSoundRecord(session.style, platform, history.steps[history.cursor - 1], true,
                        keepSoundBackup))
        return false;
    --history.cursor;
    return true;
}

bool redoSoundImport(StyleSession& session, Platform& platform) {
    SoundHistory& history = session.soundHistory;
    if (!history.canRedo()) return false;
    if (!setSoundRecord(session.style, platform, history.steps[history.cursor], false,
                        keepSoundBackup))
        return false;
    ++history.cursor;
    return true;
}

} // namespace torquil
