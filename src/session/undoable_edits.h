#pragma once
// The edits of the window, each run and recorded as one step of the session's undo history.
// Every table an edit may change is watched by the step's recorder, so an edit that stops
// half-way (a CLUT overwritten, then the pixels refused) is recorded with what it did change.

#include "exchange/transparency.h"
#include "session/delta_set_import.h"

#include <filesystem>
#include <functional>
#include <string>

namespace torquil {

class Platform;
class StyleSession;

// Imports a BMP into the selected sprite (an empty path: the sprite's own name in the program's
// directory) through the normal checks. Recorded as "Import Sprite N", or as "Overwrite CLUT C"
// when only the CLUT changed. True when the pixels were replaced.
bool importSpriteEdit(StyleSession& session, Platform& platform,
                      const std::filesystem::path& file = {});

// A delta set picture read back into the selected sprite's deltas (its palette may overwrite the
// CLUT), recorded as "Import Delta Set N".
DeltaSetImport deltaSetImportEdit(StyleSession& session, Platform& platform,
                                  const std::filesystem::path& file, bool clean);

// The transparency fix of the selected sprite, recorded as "Transparency Fix N".
TransparencyOutcome transparencyFixEdit(StyleSession& session, Platform& platform);

// Runs `accept` (the car editor putting its edits into the tables) and records what it changed in
// the car records and names as "Edit Car N". True when anything changed.
bool carEdit(StyleSession& session, int asn, const std::function<void()>& accept);

// The name of a step: "Import Sprite 61".
std::string stepName(const char* what, int number);

} // namespace torquil
