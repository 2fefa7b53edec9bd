// Undo and redo: every kind of edit is done, undone and redone on the sample level, and after each
// the session's tables, the page image and the bytes a save would write are compared with the
// state they should be back to. The history's save point, branch and caps are checked on steps
// recorded from small direct edits.

#include "cars/car_names_io.h"
#include "exchange/bmp.h"
#include "exchange/sprite_exchange.h"
#include "exchange_fixture.h"
#include "sample_level.h"
#include "session/delta_sets.h"
#include "session/edit_history.h"
#include "session/edits.h"
#include "session/save_sequence.h"
#include "style/page_io.h"

#include <fstream>

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

std::string fileBytes(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Everything an edit can change, copied out for comparison.
struct Tables {
    std::vector<std::uint8_t> pixels;
    std::vector<std::uint32_t> image;
    std::vector<std::array<std::uint8_t, 3>> pal24;
    std::vector<CarEntry> cars;
    std::array<std::string, kCarNameCount> names;
    std::vector<std::vector<RunLine>> deltaRuns;
    DirtyMarks flags;
    bool operator==(const Tables&) const = default;
};

Tables tablesOf(const StyleSession& s) {
    Tables t;
    t.pixels = s.pages.gPixels.toVector();
    t.image = s.image.rgb.toVector();
    t.pal24 = s.colours.pal24;
    t.cars = s.cars.slots;
    t.names = s.names.names;
    for (const DeltaRec& d : s.deltas.myDeltas) t.deltaRuns.push_back(d.runLine);
    t.flags = DirtyMarks::of(s.style);
    return t;
}

struct HistoryFixture : tb::StyleFixture {
    std::string pristineStyle, pristineFxt;

    void SetUp() override {
        tb::writeSampleLevel(dir.path());
        stylePath = dir / "STYLE001.G24";
        pristineStyle = fileBytes(stylePath);
        pristineFxt = fileBytes(dir / "ENGLISH.FXT");
        reopen();
    }

    // The style file and ENGLISH.FXT as a save of the session's changes would leave them, written
    // into copies of the untouched files; the session is left as it was.
    std::string savedBytes() {
        static int run = 0;
        const fs::path folder = dir / ("save" + std::to_string(run++));
        fs::create_directories(folder);
        const fs::path copy = folder / "STYLE001.G24";
        std::ofstream(copy, std::ios::binary) << pristineStyle;
        std::ofstream(folder / "ENGLISH.FXT", std::ios::binary) << pristineFxt;
        const StyleFileState kept = session->style;
        const DeltaTable keptDeltas = session->deltas;
        session->style.path = copy;
        session->style.loadedStamp = stampOf(copy);
        // The copy of ENGLISH.FXT is the one the names were loaded from, as far as the save knows.
        const CarNames keptNames = session->names;
        session->names.fxtStamp = stampOf(folder / "ENGLISH.FXT");
        BackupRegistry backups;
        SaveOptions options;
        options.backups = &backups;
        const SaveOutcome outcome = saveChanges(*session, platform, options);
        EXPECT_EQ(outcome.result, SaveResult::Saved);
        std::string bytes = fileBytes(copy) + "|" + fileBytes(folder / "ENGLISH.FXT");
        session->style = kept;
        session->deltas = keptDeltas;
        session->names = keptNames;
        platform.shownMessages.clear();
        return bytes;
    }

    // Does `edit`, then undoes and redoes it twice, checking tables, image and saved bytes.
    void roundTrip(const std::function<void()>& edit, const std::string& name) {
        const Tables before = tablesOf(*session);
        const std::string bytesBefore = savedBytes();
        if (!session->history.canUndo()) { // nothing to write yet
            EXPECT_TRUE(bytesBefore == pristineStyle + "|" + pristineFxt);
        }
        edit();
        ASSERT_TRUE(session->history.canUndo());
        EXPECT_EQ(session->history.undoName(), name);
        const Tables after = tablesOf(*session);
        ASSERT_FALSE(after == before);
        EXPECT_FALSE(after.flags.empty());
        const std::string bytesAfter = savedBytes();
        EXPECT_FALSE(bytesAfter == bytesBefore);

        for (int round = 0; round < 2; ++round) {
            ASSERT_NE(session->history.undo(*session), nullptr);
            EXPECT_TRUE(tablesOf(*session) == before) << name << " undo, round " << round;
            EXPECT_TRUE(savedBytes() == bytesBefore) << name << " undo, round " << round;
            EXPECT_EQ(session->history.redoName(), name);
            ASSERT_NE(session->history.redo(*session), nullptr);
            EXPECT_TRUE(tablesOf(*session) == after) << name << " redo, round " << round;
            EXPECT_TRUE(savedBytes() == bytesAfter) << name << " redo, round " << round;
        }
    }

    // The first car sprite with deltas.
    int carWithDeltas() {
        for (int asn = 1; asn <= session->cars.highest; ++asn) {
            if (!session->cars.find(asn)) continue;
            if (searchNSelect(*session, platform, asn) != SearchResult::Selected) continue;
            if (selected().delta_count != 0) return asn;
        }
        return 0;
    }
};

TEST_F(HistoryFixture, SpriteImportWithPaletteAndRemapsIsOneStep) {
    const int asn = carWithDeltas();
    ASSERT_GT(asn, 0);
    const fs::path bmp = exportSprite(*session, platform);
    ASSERT_FALSE(bmp.empty());
    std::string bytes = fileBytes(bmp);
    bytes[54 + 4 * 9] = static_cast<char>(bytes[54 + 4 * 9] ^ 0x55); // a colour of the palette
    for (std::size_t i = kBmpPixelDataOffset; i < kBmpPixelDataOffset + 40; ++i)
        bytes[i] = static_cast<char>(9);
    std::ofstream(bmp, std::ios::binary) << bytes;
    platform.scriptedAnswers = {Answer::Ok, Answer::Yes}; // overwrite the CLUT, correct remaps

    roundTrip([&] { EXPECT_TRUE(importSprite(*session, platform)); },
              "Import Sprite " + std::to_string(asn));
    const EditStep* step = session->history.undo(*session);
    EXPECT_TRUE(step->marks().pages);
    EXPECT_TRUE(step->marks().clut);
    EXPECT_FALSE(step->repaintRects().empty());
}

TEST_F(HistoryFixture, TransparencyFixIsOneStep) {
    const int asn = carWithDeltas();
    ASSERT_GT(asn, 0);
    // Give the sprite a background of 255 at its four sample corners.
    const SpriteRec& s = selected();
    for (int y = 0; y < s.H; ++y)
        for (int x = 0; x < s.W; ++x)
            if (x < 3 || y < 3 || x >= s.W - 3 || y >= s.H - 3)
                session->pages.pixel(s.page, s.xo + x, s.yo + y) = 255;
    repaintRect(*session, *makePagePainter(*session), s.page, s.xo, s.yo, s.W, s.H);
    platform.scriptedAnswers = {Answer::Ok, Answer::No};
    roundTrip(
        [&] {
            EXPECT_EQ(
                transparencyCorrect(*session, platform).valueOr(TransparencyDone::AlreadyCorrect),
                TransparencyDone::Corrected);
        },
        "Transparency Fix " + std::to_string(asn));
}

TEST_F(HistoryFixture, CarEditWithRenameIsOneStep) {
    int asn = 0;
    for (int i = 1; i <= session->cars.highest && !asn; ++i)
        if (session->cars.find(i)) asn = i;
    ASSERT_GT(asn, 0);
    roundTrip(
        [&] {
            const CarEntry& car = *session->cars.find(asn);
            CarEdit edit;
            edit.info = car.info;
            edit.info->max_speed += 3;
            edit.doors = car.doorList;
            edit.doors->push_back(DoorRec{1, 2, 3, 4});
            edit.name = "Undone Racer";
            EXPECT_TRUE(editCar(*session, asn, edit));
        },
        "Edit Car " + std::to_string(asn));
    const EditStep* step = session->history.undo(*session);
    EXPECT_EQ(step->marks().cars, std::vector<std::int16_t>{static_cast<std::int16_t>(asn)});
    EXPECT_TRUE(step->marks().names);
    EXPECT_FALSE(step->marks().pages);
}

TEST_F(HistoryFixture, ARenameFromTheCommandLineIsAStepOfItsOwn) {
    roundTrip([&] { EXPECT_TRUE(renameCarModel(*session, 0, "Solo Racer")); }, "Rename Model 0");
}

TEST_F(HistoryFixture, DeltaSetImportIsOneStep) {
    const int asn = carWithDeltas();
    ASSERT_GT(asn, 0);
    // A clean delta set with one more pixel at (1, 1) of the first frame.
    const fs::path set = dir / "set.bmp";
    ASSERT_TRUE(exportDeltaSet(*session, platform, set, true));
    std::string bytes = fileBytes(set);
    auto field = [&](std::size_t at) {
        return static_cast<std::int32_t>(static_cast<std::uint8_t>(bytes[at]) |
                                         static_cast<std::uint8_t>(bytes[at + 1]) << 8);
    };
    const std::int32_t width = field(18), height = field(22);
    const std::size_t at =
        kBmpPixelDataOffset + static_cast<std::size_t>(bmpRowLength(width)) * (height - 2) + 1;
    bytes[at] = static_cast<char>(bytes[at] == 3 ? 4 : 3);
    std::ofstream(set, std::ios::binary) << bytes;
    platform.shownMessages.clear();

    roundTrip(
        [&] {
            const DeltaSetImport result = importDeltaSet(*session, platform, set, true);
            EXPECT_TRUE(result) << ::testing::PrintToString(messages());
            EXPECT_EQ(*result, 1);
        },
        "Import Delta Set " + std::to_string(asn));
    const EditStep* step = session->history.undo(*session);
    EXPECT_TRUE(step->marks().deltas);
}

TEST_F(HistoryFixture, ClutOverwriteIsAStep) {
    roundTrip(
        [&] {
            EditScope scope(*session, kTouchCluts, "Overwrite CLUT 1");
            session->colours.entry(1, 200) = {1, 2, 3};
            session->style.gClutChanged = true;
        },
        "Overwrite CLUT 1");
}

// Small direct edits for the history's bookkeeping: each step sets one page pixel.
struct SavePointFixture : HistoryFixture {
    void pixelStep(int value, const std::string& name) {
        EditRecorder recorder(*session, kTouchPages);
        session->pages.pixel(0, 10, 10) = static_cast<std::uint8_t>(value);
        session->style.gPagesChanged = true;
        ASSERT_TRUE(session->history.push(recorder.finish(*session, name)));
    }
    void carStep(int asn) {
        EditRecorder recorder(*session, kTouchCars);
        session->cars.find(asn)->info.grip += 1;
        session->style.gSaveCarInfo.push_back(static_cast<std::int16_t>(asn));
        ASSERT_TRUE(session->history.push(recorder.finish(*session, "Edit Car")));
    }
    void save() {
        session->style.clearDirtyFlags(); // what a save that went through leaves
        session->history.markSaved(session->style);
    }
    bool dirty() const { return session->style.anyChange(); }
    int firstCar() const {
        for (int i = 1; i <= session->cars.highest; ++i)
            if (session->cars.slots[static_cast<std::size_t>(i)].inUse) return i;
        return 0;
    }
};

TEST_F(SavePointFixture, UndoingBackToTheSaveClearsTheFlagsAndRedoSetsThem) {
    EXPECT_FALSE(session->history.canUndo());
    EXPECT_EQ(session->history.undo(*session), nullptr);
    pixelStep(1, "A");
    save();
    EXPECT_TRUE(session->history.atSavePoint());
    ASSERT_NE(session->history.undo(*session), nullptr); // the file holds A: undoing it is a change
    EXPECT_TRUE(dirty());
    EXPECT_TRUE(session->style.gPagesChanged);
    ASSERT_NE(session->history.redo(*session), nullptr);
    EXPECT_FALSE(dirty());

    const int asn = firstCar();
    carStep(asn);
    pixelStep(2, "B");
    EXPECT_EQ(session->history.undoName(), "B");
    ASSERT_NE(session->history.undo(*session), nullptr);
    EXPECT_EQ(DirtyMarks::of(session->style).cars,
              std::vector<std::int16_t>{static_cast<std::int16_t>(asn)});
    EXPECT_FALSE(session->style.gPagesChanged); // pixel B is undone, A is in the file
    ASSERT_NE(session->history.undo(*session), nullptr);
    EXPECT_FALSE(dirty());
    EXPECT_EQ(session->history.redoName(), "Edit Car");
}

TEST_F(SavePointFixture, ANewEditAfterUndoingPastTheSaveNeverComesBackClean) {
    pixelStep(1, "A");
    save();
    ASSERT_NE(session->history.undo(*session), nullptr);
    pixelStep(3, "B"); // A is forgotten, yet the file still holds it
    EXPECT_FALSE(session->history.canRedo());
    ASSERT_NE(session->history.undo(*session), nullptr);
    EXPECT_TRUE(session->style.gPagesChanged);
    EXPECT_TRUE(session->history.atSavePoint()); // where the branch left the saved file
}

TEST_F(SavePointFixture, HistoryKeepsItsCapAndRemembersASaveBeforeItsOldestStep) {
    session->history = EditHistory(HistoryLimits{3, 64u << 20});
    for (int i = 1; i <= 5; ++i) pixelStep(i, "P" + std::to_string(i));
    EXPECT_EQ(session->history.size(), 3u);
    int undone = 0;
    while (session->history.undo(*session)) ++undone;
    EXPECT_EQ(undone, 3);
    EXPECT_EQ(session->pages.pixel(0, 10, 10), 2); // as after the second step
    EXPECT_TRUE(dirty()); // the loaded state (the save) lies before the oldest step kept

    // A memory cap keeps at least the newest step.
    session->history = EditHistory(HistoryLimits{100, 1});
    pixelStep(7, "Q1");
    pixelStep(8, "Q2");
    EXPECT_EQ(session->history.size(), 1u);
    EXPECT_EQ(session->history.undoName(), "Q2");
    EXPECT_LE(session->history.bytes(), 4096u);
}

TEST_F(SavePointFixture, NothingChangedIsNoStep) {
    EditRecorder recorder(*session, kTouchAll);
    EXPECT_FALSE(session->history.push(recorder.finish(*session, "Nothing")));
    EXPECT_FALSE(session->history.canUndo());
    // Accepting the car editor without a change records nothing either.
    EXPECT_TRUE(editCar(*session, firstCar(), CarEdit{}));
    EXPECT_FALSE(session->history.canUndo());
}

TEST_F(SavePointFixture, MarkingAllChangedIsAStepOfTheFlags) {
    ASSERT_FALSE(session->style.anyChange());
    markAllChanged(*session);
    EXPECT_EQ(session->history.undoName(), "Mark All Changed");
    EXPECT_TRUE(session->style.gPagesChanged);
    ASSERT_NE(session->history.undo(*session), nullptr);
    EXPECT_FALSE(session->style.anyChange());
}

TEST_F(SavePointFixture, NestedEditScopesMakeOneStepNamedByTheOutermost) {
    {
        EditScope outer(*session, kTouchPages | kTouchCluts, "Import Sprite 1");
        EXPECT_TRUE(outer.outermost());
        session->pages.pixel(0, 1, 1) = 200;
        {
            EditScope inner(*session, kTouchCluts, "Overwrite CLUT 0");
            EXPECT_FALSE(inner.outermost());
            session->colours.entry(0, 3) = {9, 9, 9};
        }
        EXPECT_EQ(session->history.size(), 0u); // nothing pushed until the outer scope ends
        outer.rename("Overwrite CLUT 0");
    }
    ASSERT_EQ(session->history.size(), 1u);
    EXPECT_EQ(session->history.undoName(), "Overwrite CLUT 0");
    EXPECT_TRUE(session->history.undo(*session)->marks().clut);
    EXPECT_NE(session->pages.pixel(0, 1, 1), 200);

    // An edit stopped by an error is recorded with what it changed.
    try {
        EditScope scope(*session, kTouchPages, "Broken");
        session->pages.pixel(0, 2, 2) = 201;
        throw std::runtime_error("stopped");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ(session->history.undoName(), "Broken");
}

} // namespace
