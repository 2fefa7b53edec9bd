#pragma once
// One undoable edit of a session: only what the edit changed in the session's tables (page
// rectangles, CLUTs, car records, car names, delta entries) with the values before and after,
// the dirty flags before and after, and the page rectangles to repaint. An EditRecorder takes a
// snapshot of the tables an edit may touch and, when the edit is done, keeps only the differences.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cars/car_info.h"
#include "sprites/delta_table.h"
#include "sprites/sprite_tables.h"
#include "style/pages.h" // PageArea

namespace torquil {

class StyleSession;
struct SpriteRec;
struct StyleFileState;

// The tables an edit may change; the recorder copies only these.
enum EditTouches : unsigned {
    kTouchPages = 1,
    kTouchCluts = 2,
    kTouchCars = 4,
    kTouchNames = 8,
    kTouchDeltas = 16,
    kTouchSprites = 32, // the sprite records (place, size, delta entries) and the page count
    kTouchAll = 63
};

// The dirty state that the save sequence reads: the four flags and the cars queued for writing.
struct DirtyMarks {
    bool pages = false, clut = false, deltas = false, names = false;
    bool layout = false;            // the sprite info section is written whole (gLayoutChanged)
    std::vector<std::int16_t> cars; // absolute sprite numbers, each once, entry 0 not included

    [[nodiscard]] static DirtyMarks of(const StyleFileState& style);
    // Sets the style's flags and gSaveCarInfo to exactly these marks.
    void applyTo(StyleFileState& style) const;
    void add(const DirtyMarks& other);
    [[nodiscard]] bool empty() const {
        return !pages && !clut && !deltas && !names && !layout && cars.empty();
    }
    bool operator==(const DirtyMarks&) const = default;
};

// The sprite's rectangle on its page (clipped to the page): where the edits of a sprite paint, and
// so where undo repaints a CLUT change.
[[nodiscard]] PageArea spriteArea(const SpriteRec& sprite);

// The sprite records of every page and the page count, as an edit that moves or resizes a sprite
// or changes its delta count leaves them.
struct SpriteLayout {
    std::vector<std::vector<SpriteRec>> pageSprites;
    std::int32_t linesLoaded = 0, highestPage = 0;
    std::int16_t blockLoaded = -1;
};

class EditStep {
public:
    // The menu's name of the step ("Import Sprite 61").
    [[nodiscard]] const std::string& name() const { return name_; }
    // What the step left to be saved: the kinds of tables it changed and the flags it set.
    [[nodiscard]] const DirtyMarks& marks() const { return marks_; }
    // Rectangles of the page image that the step repaints when it is undone or redone.
    [[nodiscard]] const std::vector<PageArea>& repaintRects() const { return repaint_; }
    // Nothing changed: neither a table nor a flag.
    [[nodiscard]] bool empty() const;
    // Memory the step keeps, roughly in bytes.
    [[nodiscard]] std::size_t bytes() const;

    // Put the tables back as they were before (undo) or after (redo) the edit and repaint the
    // step's rectangles. The dirty flags are the history's business (they depend on the save).
    void undo(StyleSession& session) const { apply(session, false); }
    void redo(StyleSession& session) const { apply(session, true); }

private:
    friend class EditRecorder;
    void apply(StyleSession& session, bool after) const;

    struct PagePatch {
        PageArea rect;
        std::vector<std::uint8_t> before, after; // rect.w * rect.h bytes, row by row
    };
    struct ClutPatch {
        int clut = 0;
        std::vector<std::uint8_t> before, after; // 256 x (red, green, blue)
    };
    struct CarPatch {
        int asn = 0;
        CarEntry before, after;
    };
    struct NamePatch {
        int model = 0;
        std::string keyBefore, keyAfter, nameBefore, nameAfter;
    };
    struct DeltaPatch {
        std::size_t index = 0;
        std::optional<DeltaRec> before, after; // nullopt: the entry did not exist
    };

    std::string name_;
    DirtyMarks marks_, flagsBefore_, flagsAfter_;
    std::vector<PageArea> repaint_;
    std::vector<PagePatch> pages_;
    std::vector<ClutPatch> cluts_;
    std::size_t clutEntriesBefore_ = 0, clutEntriesAfter_ = 0;
    std::vector<CarPatch> cars_;
    std::size_t carSlotsBefore_ = 0, carSlotsAfter_ = 0;
    std::vector<NamePatch> names_;
    std::vector<DeltaPatch> deltas_;
    std::size_t deltaEntriesBefore_ = 0, deltaEntriesAfter_ = 0;
    std::int32_t deltaCountBefore_ = 0, deltaCountAfter_ = 0;
    // The sprite records and the page count, whole, when an edit moved or resized a sprite.
    std::shared_ptr<const SpriteLayout> layoutBefore_, layoutAfter_;
};

// Snapshot of the tables before an edit; finish() turns it into the step of what changed.
class EditRecorder {
public:
    EditRecorder(const StyleSession& session, unsigned touches);
    ~EditRecorder();
    EditRecorder(const EditRecorder&) = delete;
    EditRecorder& operator=(const EditRecorder&) = delete;

    // A rectangle that the edit painted, repainted again on undo and redo (a CLUT change shows
    // only where the edit painted it).
    void touch(const PageArea& rect);
    [[nodiscard]] EditStep finish(const StyleSession& session, std::string name);

private:
    struct Snapshot;
    unsigned touches_;
    std::vector<PageArea> touched_;
    std::unique_ptr<Snapshot> before_;
};

} // namespace torquil
