#pragma once
// Car names: read from ENGLISH.FXT beside the style file when a style is opened (the decoded copy
// "~TMP.TXT" stays in the program's directory for the save), written back into it after names
// were changed in the editor.

#include "cars/car_names.h"

#include <string>

namespace torquil {

class BinaryFile;
class Platform;
class StyleSession;

// Fills session.names from ENGLISH.FXT (found in the style's folder ignoring case). Without the
// file: a three-line warning and the built-in names; the load goes on. False only when the
// existing file could not be decoded.
bool loadCarNames(StyleSession& session, BinaryFile& file, Platform& platform);

// Rebuilds ENGLISH.FXT from "~TMP.TXT" with the names of session.names (through "~TMPN.TXT").
bool saveCarNames(StyleSession& session, Platform& platform);

// The names the editor uses when the style has no ENGLISH.FXT (no keys).
void fillBuiltInNames(CarNames& names);

// Gives car `model` a new name in the names table and in every loaded car of that model, and
// marks the names for saving. False (and nothing changed) for a model outside the table.
bool renameCarModel(StyleSession& session, int model, const std::string& name);

} // namespace torquil
