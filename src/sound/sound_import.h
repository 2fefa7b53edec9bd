#pragma once
// Replacing one sound of the level's bank with a modder's recording. The new samples are added
// at the end of the RAW file and the record points at them: every other record keeps its offset,
// the old samples stay where they were (so taking the import back only rewrites the record), and
// a RAW file renamed into place before its SDT still plays the old bank. The RAW (streamed a piece
// at a time) and the SDT are written whole beside their old files and replace them together,
// RAW first.

#include "base/result.h"
#include "sound/sound_bank.h"
#include "sound/sound_file_reader.h"

#include <filesystem>
#include <functional>
#include <string>

namespace torquil {

class Platform;
struct StyleFileState;

// What an import changed in the table, to take it back (undo) or do it again (redo).
struct SoundReplacement {
    int number = 0;
    SdtRecord before, after;
};

// Makes the .bak of a file before its first write; a failure's cause says why it could not.
using KeepBackup = std::function<Result<void>(const std::filesystem::path& file)>;

// Replaces sound `number` (1 to the table's last index) with `sound`. Checks the number, that the
// samples can be addressed by the table's 32-bit offsets, and takes the bank's lock, then keeps
// the .bak of both files and writes the pair. Every refusal is told through `platform`, and its
// failure carries the words (Failed: nothing was written).
[[nodiscard]] SoundResult replaceSound(const StyleFileState& style, Platform& platform, int number,
                                       const DecodedSound& sound, const KeepBackup& keepBackup,
                                       SoundReplacement& change);

// Reads the recording `file` (libsndfile) and replaces sound `number` with it.
[[nodiscard]] SoundResult importSoundFile(const StyleFileState& style, Platform& platform,
                                          int number, const std::filesystem::path& file,
                                          const KeepBackup& keepBackup, SoundReplacement& change);

// Sets record `change.number` back to `change.before` (undo) or on to `change.after` (redo):
// only the SDT is rewritten. Refused, with the reason, when the record no longer holds what the
// change left (the bank was changed since) or its samples are not in the RAW file.
[[nodiscard]] bool setSoundRecord(const StyleFileState& style, Platform& platform,
                                  const SoundReplacement& change, bool undo,
                                  const KeepBackup& keepBackup);

} // namespace torquil
