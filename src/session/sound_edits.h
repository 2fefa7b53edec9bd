#pragma once
// Replacing a sound of the open level's bank, from the window and the command line, and the
// window's undo and redo of it. The .bak of the SDT and RAW files is kept before their first write
// of the run, as for the style file.

#include "session/sound_history.h"

#include <filesystem>

namespace torquil {

class Platform;
class StyleSession;

// Replaces sound `number` with the recording `file`; a done replacement joins the session's sound
// history (steps that were undone are forgotten).
[[nodiscard]] SoundResult importSound(StyleSession& session, Platform& platform, int number,
                                      const std::filesystem::path& file);

// Takes the last replacement back, or does the next undone one again. False (and told through
// the platform) when there is none or the bank was changed since.
[[nodiscard]] bool undoSoundImport(StyleSession& session, Platform& platform);
[[nodiscard]] bool redoSoundImport(StyleSession& session, Platform& platform);

} // namespace torquil
