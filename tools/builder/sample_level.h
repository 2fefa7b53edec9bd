#pragma once
// The bundled sample level (small, drawn to look like a level) and the full-size level used by the
// benchmarks. Everything here is drawn by code; no byte comes from the game.

#include "style_builder.h"

#include <filesystem>
#include <string>
#include <vector>

namespace torquil::testing {

// Sample level: 4 pages of top-down cars, big vehicles, peds, arrows, digits, traffic lights,
// objects and explosions; 38 car records (every vtype with a sprite kind), doors and deltas.
StyleSpec sampleSpec24(); // STYLE001.G24
StyleSpec sampleSpec8();  // STYLE002.GRY: the same sprites and cars through one 64-level palette

// The sample's ENGLISH.FXT entries, "[1001]An..." first and "[]" last.
std::vector<std::string> sampleFxtEntries();
// model -> name as the sample's ENGLISH.FXT has them (the texts after "[carN]").
std::vector<std::pair<int, std::string>> sampleCarNames();

// Sound bank of level 1 or 2. Record 0 and the last record are short silences (the editor cannot
// play the bank's last record); the others are engine, horn, siren, crash and the like, 8-bit
// unsigned at 11025 and 22050 Hz.
std::vector<SoundSpec> sampleSounds(int level);

// Writes STYLE001.G24, STYLE002.GRY, ENGLISH.FXT, audio/LEVEL001.SDT, audio/LEVEL001.RAW,
// audio/LEVEL002.SDT and audio/LEVEL002.RAW into dir (created when missing).
void writeSampleLevel(const std::filesystem::path& dir);

// Full-size 24-bit level for benchmarks, in the proportions of a real level: 386 tiles, 26 pages,
// about 2,900 sprites and 450 deltas, about 1,000 physical CLUTs, 38 car records.
StyleSpec fullSizeSpec24();
// The same level on fewer (or as many) pages, 1 to 26: the objects are cut in proportion so that
// the pages are as full as those of the 26-page level (16 pages is the size of a real level).
StyleSpec fullSizeSpec24(int pages);

} // namespace torquil::testing
