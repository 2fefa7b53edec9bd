#pragma once
// One open style file and every table loaded from it. The application replaces the whole
// session on each load, so nothing of an earlier file can leak into the next.

#include "base/app_options.h"
#include "base/runtime_error.h"
#include "base/stamped_content.h"
#include "cars/car_info.h"
#include "cars/car_names.h"
#include "session/edit_history.h"
#include "session/sound_history.h"
#include "sprites/colour_tables.h"
#include "sprites/delta_table.h"
#include "sprites/selection.h"
#include "sprites/sprite_tables.h"
#include "style/pages.h"
#include "style/style_file.h"

#include <filesystem>
#include <string>

namespace torquil {

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
    // The style file's bytes as the load read them (options.keepStyleContent), for the save.
    StampedContent keptStyle;

    // Sounds of the level's bank replaced in this session, for the sound page's undo and redo.
    SoundHistory soundHistory;

    // The currently selected sprite record, or nullptr.
    [[nodiscard]] const SpriteRec* selectedSprite() const;
    [[nodiscard]] SpriteRec* selectedSprite();
    // Path of a file in the program's directory.
    [[nodiscard]] std::filesystem::path workPath(const std::string& name) const {
        return options.workPath(name);
    }
};

} // namespace torquil
