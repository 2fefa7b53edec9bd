#pragma once
// Every change of an open style's data enters the session through one of these functions; the
// window and the command line both call them, and only they set the dirty flags that the save
// sequence reads (gPagesChanged, gClutChanged, gDeltasChanged, gCarNamesChanged, gSaveCarInfo).
// An undo stack wraps these calls.

#include "cars/car_info.h"
#include "exchange/palette_compare.h"
#include "exchange/transparency.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace torquil {

class Platform;
class StyleSession;
struct SpriteRec;

// One edit of a car: its record, its model's name, or both.
struct CarEdit {
    // The edited record (fields, remaps and doors) replacing the loaded one; queued for saving.
    std::optional<CarInfo> info;
    std::optional<std::vector<DoorRec>> doors;
    // The new name of the car's model (after `info` is applied); the names are marked for saving.
    std::optional<std::string> name;
};

// Applies a car edit to the car at absolute sprite number `asn`: the record first (the car goes
// into gSaveCarInfo), then the name through renameCarModel. False when there is no car at `asn`
// (nothing changed) or when the name was refused (the record is still applied).
[[nodiscard]] bool editCar(StyleSession& session, int asn, const CarEdit& edit);

// Gives car `model` a new name in the names table and in every loaded car of that model, and
// sets gCarNamesChanged. False (and nothing changed) for a model outside the names table.
[[nodiscard]] bool renameCarModel(StyleSession& session, int model, const std::string& name);

// Sprite import: reads workDir / bmpFileName() back into the selected sprite. The pixels go into
// the page and the sprite's rectangle is repainted in the page image; the palette may overwrite
// the sprite's CLUT (overwriteClut). True when the pixels were replaced (gPagesChanged is set);
// false leaves the page as it was.
[[nodiscard]] bool importSprite(StyleSession& session, Platform& platform);
// The same from a BMP (or a PNG, by the name) somewhere else (the command line names the file).
[[nodiscard]] bool importSpriteFrom(StyleSession& session, Platform& platform,
                                    const std::filesystem::path& file);
// Importing a BMP chosen anywhere: the sprite is found from the file's name (KRBSPR, KRBTIL or
// CAR + level + "_" + number; a CAR number is a model), selected, the file copied to the name the
// import reads in the program's directory, and imported. False with a message when the name
// fits no sprite or the copy fails.
[[nodiscard]] bool importSpriteNamedBy(StyleSession& session, Platform& platform,
                                       const std::filesystem::path& file);

// Transparency fix of the selected sprite: finds its background index from its corners and
// exchanges it with index 0 in the sprite's pixels and CLUT (through comparePalette), so the
// picture looks the same but its background is transparent. Sets gPagesChanged when corrected.
[[nodiscard]] TransparencyOutcome transparencyCorrect(StyleSession& session, Platform& platform);

// CLUT overwrite: replaces the 256 colours of physical CLUT `clut` with `colours` and sets
// gClutChanged. False (nothing changed) for a CLUT outside the table.
[[nodiscard]] bool overwriteClut(StyleSession& session, int clut, const BmpColourTable& colours);

// Compares an imported colour table with CLUT `clut` and, when they differ, asks whether to
// overwrite the CLUT (overwriteClut) and, for a sprite with deltas, whether to recolour the car's
// remaps. Returns false when the user cancelled (nothing changed).
[[nodiscard]] bool comparePalette(StyleSession& session, Platform& platform, int clut,
                                  const BmpColourTable& imported);

// Marks every part of a loaded style as changed (pages, the CLUTs of a .G24 file, deltas, every
// loaded car, the car names), so the next save rewrites all of it.
void markAllChanged(StyleSession& session);

} // namespace torquil
