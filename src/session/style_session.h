#pragma once
// One open style file and every table loaded from it. The application replaces the whole
// session on each load, so nothing of an earlier file can leak into the next.

#include "base/runtime_error.h"
#include "cars/car_info.h"
#include "cars/car_names.h"
#include "exchange/deltas.h"
#include "session/edit_history.h"
#include "sprites/colour_tables.h"
#include "sprites/sprite_tables.h"
#include "style/pages.h"
#include "style/style_file.h"

#include <filesystem>
#include <string>

namespace torquil {

// The Debug menu's check marks: which dump files loaders write.
struct DumpFlags {
    bool carInfo = false, spriteInfo = false, clut = false, delta = false;
};

// What the program was started with; shared by every session of a run.
struct AppOptions {
    bool debugMode = false;        // gDebugMode: "-d" anywhere on the command line
    std::filesystem::path workDir; // "the program's directory": temp files, dumps, BMPs
    DumpFlags dumps;
};

// The board's selection; -1 = none.
struct Selection {
    int page = -1;  // BLK of the selected sprite
    int sib = -1;   // SIB of the selected sprite ("selected sprite")
    int third = -1; // the board's third selection, kept for parity with the original state
    bool any() const { return sib >= 0 && page >= 0; }
    void clear() { page = sib = third = -1; }
};

class StyleSession {
public:
    explicit StyleSession(AppOptions options = {})
        : options(std::move(options)), errors(this->options.debugMode) {}
    StyleSession(const StyleSession&) = delete;
    StyleSession& operator=(const StyleSession&) = delete;

    AppOptions options;
    ErrorState errors;
    StyleFileState style;
    Pages pages;
    PageImage image;
    ColourTables colours;
    SpriteTables sprites;
    CarTable cars;
    CarNames names;
    DeltaTable deltas;
    Selection selection;
    std::string stepText; // the step in progress, quoted by the failure messages
    std::string caption;  // the window caption after a successful load
    EditHistory history;  // undo and redo of this file's edits

    // The currently selected sprite record, or nullptr.
    const SpriteRec* selectedSprite() const;
    SpriteRec* selectedSprite();
    // Path of a file in the program's directory.
    std::filesystem::path workPath(const std::string& name) const { return options.workDir / name; }
};

} // namespace torquil
