#pragma once
// Car names: read from ENGLISH.FXT beside the style file when a style is opened (the decoded copy
// "~TMP.TXT" stays in the program's directory for the save), written back into it after names
// were changed in the editor.

#include "cars/car_names.h"

#include <string>

namespace torquil {

struct FormatContext;
struct StyleFileState;

// Fills `names` from ENGLISH.FXT (found in the style's folder ignoring case). Without the file: a
// three-line warning and the built-in names; the load goes on. False only when the existing file
// could not be decoded.
[[nodiscard]] bool loadCarNames(CarNames& names, const StyleFileState& style, FormatContext& ctx);

// Rebuilds ENGLISH.FXT from "~TMP.TXT" with `names` (through "~TMPN.TXT").
[[nodiscard]] bool saveCarNames(const CarNames& names, const StyleFileState& style,
                                FormatContext& ctx);

// The names the editor uses when the style has no ENGLISH.FXT (no keys).
void fillBuiltInNames(CarNames& names);

} // namespace torquil
