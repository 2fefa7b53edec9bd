#pragma once
// The replacements of sounds of the open level's bank, for undo and redo in the window. A sound
// bank is written as soon as a sound is replaced (it is not part of Save Changes), so undo and
// redo rewrite the bank's record too (session/sound_edits.h).

#include "sound/sound_import.h"

#include <cstddef>
#include <string>
#include <vector>

namespace torquil {

struct SoundHistory {
    std::vector<SoundReplacement> steps;
    std::size_t cursor = 0; // steps before it are done

    [[nodiscard]] bool canUndo() const { return cursor > 0; }
    [[nodiscard]] bool canRedo() const { return cursor < steps.size(); }
    // "Replace Sound 12"; empty when there is nothing to undo or redo.
    [[nodiscard]] std::string undoName() const;
    [[nodiscard]] std::string redoName() const;
};

} // namespace torquil
