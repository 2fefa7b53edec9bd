#pragma once
// Every change of an open style's data enters the session through one of these functions; the
// window and the command line both call them, and only they set the dirty flags that the save
// sequence reads (gPagesChanged, gClutChanged, gDeltasChanged, gCarNamesChanged, gSaveCarInfo).
// Each one records itself as one step of the session's undo history (an EditScope); an edit made
// of other edits (an import that overwrites a CLUT) is one step, named by the outermost.

#include "base/result.h"
#include "cars/car_info.h"
#include "cars/car_name_rules.h"
#include "exchange/palette_compare.h"
#include "exchange/transparency.h"

#include "sprites/delta_table.h"

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
// into gSaveCarInfo), then the name through renameCarModel. Fails when there is no car at `asn`
// (nothing changed) or when the name was refused by checkCarName (cars/car_name_rules.h; the
// record is still applied); the failure's message is the reason for the user.
[[nodiscard]] Result<void> editCar(StyleSession& session, int asn, const CarEdit& edit);

// Gives car `model` a new name in the names table and in every loaded car of that model, and
// sets gCarNamesChanged. Fails (and nothing changed) with checkCarName's refusal: a model outside
// the names table, no ENGLISH.FXT or no entry of the model in it (the save would drop the name),
// a line break in the name.
[[nodiscard]] CarNameVerdict renameCarModel(StyleSession& session, int model,
                                            const std::string& name);

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

// Whether an import may change the sprite's size, and remove the deltas that no longer fit.
struct ResizeChoice {
    bool resize = false;
    bool dropDeltas = false;
};

// The sprite import of a picture of any size (session/sprite_resize.cpp): a picture of the
// sprite's size, or any picture without `choice.resize`, is importSpriteFrom. Another size gives
// the sprite that size and a place on the pages (its old place when it fits there, else free
// space, else a new page; 26 pages at most), keeping its top-left corner; its deltas that no
// longer fit are named and removed only with `choice.dropDeltas`, the car's doors renumbered.
// The car record's collision size is left as it is. Refusals show a message and change nothing.
// Recorded as "Resize Sprite N".
[[nodiscard]] bool importSpriteResizing(StyleSession& session, Platform& platform,
                                        const std::filesystem::path& file,
                                        const ResizeChoice& choice);

// A delta set import: how many deltas had their run lines replaced, or the refusal (already
// shown to the user; the failure carries the same words).
using DeltaSetImport = Result<int>;

// Reads a clean or dirty delta set (BMP, or PNG by the name) back into the selected sprite's
// deltas, checked as the sprite import checks a picture (its palette may overwrite the CLUT). A
// frame that shows its delta as it is keeps its run lines exactly; in a changed frame only the
// pixels that differ from the export are added, changed or removed (runsFromEditedFrame), so a
// clean sheet's colour-0 delta pixels, which look like the background, are kept. Any refusal (a
// picture the checks refuse, a frame that cannot be a delta) shows its message and leaves the
// deltas as they were. On success gPagesChanged and gDeltasChanged are set, so that the save
// sequence rewrites the delta store. Recorded as "Import Delta Set N".
[[nodiscard]] DeltaSetImport importDeltaSet(StyleSession& session, Platform& platform,
                                            const std::filesystem::path& file, bool clean);

// Whether a delta set picture with another number of frames may set the sprite's delta count,
// and whether deltas that the car's doors show may be removed with it.
struct DeltaCountChoice {
    bool setCount = false;
    bool dropUsed = false;
};

// The delta set import of a picture whose width holds another number of frames
// (session/delta_set_resize.cpp): with `choice.setCount` the sprite's delta count becomes the
// number of frames (deltas added at the end are drawn by their frames; removed ones are taken
// from the end, refused when a door shows one unless `choice.dropUsed`), then the frames are
// imported as importDeltaSet does, all as one step. Any other picture is importDeltaSet's.
[[nodiscard]] DeltaSetImport importDeltaSetResizing(StyleSession& session, Platform& platform,
                                                    const std::filesystem::path& file, bool clean,
                                                    const DeltaCountChoice& choice);

// Transparency fix of the selected sprite: finds its background index from its corners and
// exchanges it with index 0 in the sprite's pixels and CLUT (through comparePalette), so the
// picture looks the same but its background is transparent. Sets gPagesChanged when corrected.
// A refusal's message is the one shown to the user (none for a missing sprite or a Cancel).
[[nodiscard]] TransparencyResult transparencyCorrect(StyleSession& session, Platform& platform);

// CLUT overwrite: replaces the 256 colours of physical CLUT `clut` with `colours` and sets
// gClutChanged. False (nothing changed) for a CLUT outside the table.
[[nodiscard]] bool overwriteClut(StyleSession& session, int clut, const BmpColourTable& colours);

// Compares an imported colour table with CLUT `clut` and, when they differ, asks whether to
// overwrite the CLUT (overwriteClut) and, for a sprite with deltas, whether to recolour the car's
// remaps. Returns false when the user cancelled (nothing changed).
[[nodiscard]] bool comparePalette(StyleSession& session, Platform& platform, int clut,
                                  const BmpColourTable& imported);

// The board's view of the open style: the selected sprite and the page the board shows. Not the
// style's data (no dirty flag, no undo step), but set here so that the window never writes the
// session's tables itself.
// Selects sprite `sib` (1-based) of page `page`; false, with nothing selected, when there is none.
[[nodiscard]] bool selectOnBoard(StyleSession& session, int page, int sib);
void clearSelection(StyleSession& session);
// Makes `page` (clamped to the pages there are) the page the board shows (gBoardOffset).
void showBoardPage(StyleSession& session, int page);

// Marks every part of a loaded style as changed (pages, the CLUTs of a .G24 file, deltas, every
// loaded car, the car names), so the next save rewrites all of it.
void markAllChanged(StyleSession& session);

} // namespace torquil
