// Car packs applied to a level whose sections moved since the pack was made: a resize that
// dropped a car's deltas shrank the sprite graphics and moved every later section, yet a pack for
// another car still finds its bytes; a pack for the resized car's sprite is refused, naming it.

#include "session/car_pack.h"

#include "cars/car_fields.h"
#include "cli_runner.h"
#include "exchange/gc3_moved.h"
#include "exchange/sprite_exchange.h"
#include "exchange_fixture.h"
#include "fake_platform.h"
#include "sample_level.h"
#include "session/edits.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/picture_file.h"
#include "session/save_sequence.h"
#include "session/session_io.h"
#include "session/sprite_resize.h"
#include "session/style_session.h"
#include "sprites/sprite_info.h"
#include "style/section_map.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

// Three copies of the sample level: `pristine` as the builder wrote it, and the folders where
// packs are made and applied.
struct MovedSectionsFixture : ::testing::Test {
    tb::TempDir dir;
    tb::FakePlatform platform;
    std::unique_ptr<StyleSession> session;
    BackupRegistry backups;

    void SetUp() override { tb::writeSampleLevel(dir / "pristine"); }
    fs::path styleIn(const std::string& folder) const { return dir / folder / "STYLE001.G24"; }
    fs::path fxtIn(const std::string& folder) const { return dir / folder / "ENGLISH.FXT"; }
    void copyPristine(const std::string& folder) {
        fs::create_directories(dir / folder);
        for (const char* name : {"STYLE001.G24", "ENGLISH.FXT"})
            fs::copy_file(dir / "pristine" / name, dir / folder / name,
                          fs::copy_options::overwrite_existing);
    }
    void load(const std::string& folder) {
        AppOptions app;
        app.workDir = dir / "work";
        fs::create_directories(app.workDir);
        session = std::make_unique<StyleSession>(app);
        prepareStyle(session->style, styleIn(folder), kLoadSprites);
        ASSERT_EQ(initHeader(*session, platform, standardLoaders()), LoadOutcome::Loaded);
        platform.shownMessages.clear();
    }
    void save() {
        SaveOptions options;
        options.backups = &backups;
        ASSERT_EQ(saveChanges(*session, platform, options).result, SaveResult::Saved)
            << (platform.messageTexts().empty() ? "" : platform.messageTexts().back());
    }
    // Two named cars of the level whose sprites have deltas.
    std::pair<int, int> twoCars() {
        std::vector<int> cars;
        for (int asn = 1; asn < static_cast<int>(session->cars.slots.size()); ++asn)
            if (session->cars.slots[static_cast<std::size_t>(asn)].inUse &&
                !session->cars.slots[static_cast<std::size_t>(asn)].name.empty() &&
                searchNSelect(*session, platform, asn) == SearchResult::Selected &&
                session->selectedSprite()->delta_count > 0)
                cars.push_back(asn);
        EXPECT_GE(cars.size(), 2u);
        return cars.size() < 2 ? std::pair{0, 0} : std::pair{cars[0], cars[1]};
    }
    std::string field(int asn, const char* name) const {
        return fieldText(*session->cars.find(asn), carFieldByName(name)->index);
    }
    void editField(int asn, const char* name, const std::string& text) {
        CarEntry edited = *session->cars.find(asn);
        ASSERT_EQ(setFieldText(edited, carFieldByName(name)->index, text), FieldStore::Stored);
        ASSERT_TRUE(editCar(*session, asn, CarEdit{edited.info, std::nullopt, std::nullopt}));
    }
    // The car's sprite with its first row's pixels changed, through the BMP export and import.
    void repaintSprite(int asn) {
        ASSERT_EQ(searchNSelect(*session, platform, asn), SearchResult::Selected);
        const SpriteRec& sprite = *session->selectedSprite();
        std::vector<std::uint8_t> pixels = spritePixels(*session, sprite);
        for (int x = 0; x < sprite.W; ++x)
            pixels[static_cast<std::size_t>(x)] = static_cast<std::uint8_t>(1 + x % 7);
        const fs::path bmp = dir / "repainted.bmp";
        ASSERT_TRUE(writePicture(*session, platform, bmp, pixels, sprite.clut, sprite.W, sprite.H));
        ASSERT_TRUE(importSpriteFrom(*session, platform, bmp));
    }
    // The car's sprite made a quarter as wide and high: it keeps its top-left corner, and the
    // deltas that no longer fit are dropped, so the delta store at the end of the sprite graphics
    // shrinks and every later section moves. Returns the new width.
    int shrinkDroppingDeltas(int asn) {
        EXPECT_EQ(searchNSelect(*session, platform, asn), SearchResult::Selected);
        const SpriteRec& sprite = *session->selectedSprite();
        const int w = std::max(4, sprite.W / 4), h = std::max(4, sprite.H / 4);
        const ResizePlan plan = planSpriteResize(*session, sprite, w, h);
        EXPECT_TRUE(plan.possible) << plan.why;
        EXPECT_EQ(plan.place.kind, PlaceKind::OldPlace);
        EXPECT_FALSE(plan.unfitDeltas.empty());
        const fs::path bmp = dir / "resized.bmp";
        EXPECT_TRUE(
            writePicture(*session, platform, bmp, tb::patternPixels(w, h, 3), sprite.clut, w, h));
        EXPECT_TRUE(importSpriteResizing(*session, platform, bmp, {true, true}));
        return w;
    }
    // A pack of what `edit` does to a copy of the pristine level.
    fs::path packOf(const std::string& name, const std::function<void()>& edit) {
        copyPristine(name);
        load(name);
        edit();
        save();
        const fs::path pack = dir / (name + ".GC3");
        EXPECT_TRUE(writeCarPack(styleIn(name), styleIn("pristine"), fxtIn(name), fxtIn("pristine"),
                                 pack, platform));
        return pack;
    }
};

TEST_F(MovedSectionsFixture, PackForAnotherCarFollowsSectionsMovedByAResizeAndItsOwnCarIsRefused) {
    load("pristine");
    const auto [resized, other] = twoCars();
    const std::string speed = field(other, "max_speed") == "77" ? "78" : "77";
    const int model = session->cars.find(other)->info.model;
    const fs::path forOther = packOf("other", [&] {
        editField(other, "max_speed", speed);
        ASSERT_TRUE(renameCarModel(*session, model, "Zipper"));
    });
    const fs::path forResized = packOf("resized", [&] { repaintSprite(resized); });

    // The level the packs are applied to: the first car resized onto a new page and saved.
    copyPristine("level");
    load("level");
    const int width = shrinkDroppingDeltas(resized);
    save();
    const auto shrunk = tb::readFile(styleIn("level"));
    const auto pristine = tb::readFile(styleIn("pristine"));
    ASSERT_LT(shrunk.size(), pristine.size());
    // Every section from the sprite graphics on lies elsewhere now.
    const auto layouts = gc3StyleLayouts(
        [&] {
            CarPackFile file;
            EXPECT_TRUE(readCarPack(forOther, file, platform));
            return *file.originals;
        }(),
        shrunk, true);
    ASSERT_TRUE(layouts);
    EXPECT_TRUE(layouts->moved());
    const auto tail = layouts->now.back();
    EXPECT_NE(tail.first, layouts->before.back().first);

    // The pack for the other car: applied through the command line, both edits kept.
    const auto applied =
        tb::runCli({"gc3", "apply", forOther.string(), styleIn("level").string(),
                    fxtIn("level").string(), "--workdir", (dir / "work").string()});
    ASSERT_EQ(applied.status, 0) << applied.err;
    EXPECT_NE(applied.out.find("applied to:"), std::string::npos) << applied.out;
    load("level");
    EXPECT_EQ(field(other, "max_speed"), speed);
    ASSERT_EQ(searchNSelect(*session, platform, resized), SearchResult::Selected);
    EXPECT_EQ(session->selectedSprite()->W, width);
    EXPECT_EQ(session->names.nameOf(model), "Zipper");

    // A pack that repaints the other car's sprite lies in the sprite graphics, whose size the
    // resize changed: its bytes have lost their place, and it is refused, the sprite named.
    const fs::path repaint = packOf("repaint", [&] { repaintSprite(other); });
    const auto applied2 =
        applyCarPack(repaint, {styleIn("level"), fxtIn("level")}, platform, backups);
    EXPECT_EQ(applied2.result, ApplyResult::Refused);
    ASSERT_FALSE(applied2.conflicts.empty());
    EXPECT_NE(applied2.conflicts[0].find("sprite " + std::to_string(other)), std::string::npos)
        << applied2.conflicts[0];

    // The pack for the resized car's sprite: refused with the sprite named, nothing written.
    const auto before = tb::readFile(styleIn("level"));
    const auto fxtBefore = tb::readFile(fxtIn("level"));
    BackupRegistry fresh;
    const CarPackApplied refused =
        applyCarPack(forResized, {styleIn("level"), fxtIn("level")}, platform, fresh);
    EXPECT_EQ(refused.result, ApplyResult::Refused);
    const std::string name = session->cars.find(resized)->name;
    ASSERT_FALSE(refused.conflicts.empty());
    EXPECT_NE(refused.conflicts[0].find("sprite " + std::to_string(resized) + " (" + name + ")"),
              std::string::npos)
        << refused.conflicts[0];
    EXPECT_EQ(tb::readFile(styleIn("level")), before);
    EXPECT_EQ(tb::readFile(fxtIn("level")), fxtBefore);
    const auto cli = tb::runCli({"gc3", "apply", forResized.string(), styleIn("level").string(),
                                 fxtIn("level").string(), "--workdir", (dir / "work").string()});
    EXPECT_EQ(cli.status, 1);
    EXPECT_EQ(tb::readFile(styleIn("level")), before);
}

TEST_F(MovedSectionsFixture, PackThatChangesTheLengthItselfIsStillRefusedOnAMovedLevel) {
    load("pristine");
    const auto [resized, other] = twoCars();
    const fs::path shrinks = packOf("shrinks", [&] { shrinkDroppingDeltas(other); });
    copyPristine("level");
    load("level");
    shrinkDroppingDeltas(resized);
    save();
    const auto before = tb::readFile(styleIn("level"));
    BackupRegistry fresh;
    const CarPackApplied refused =
        applyCarPack(shrinks, {styleIn("level"), fxtIn("level")}, platform, fresh);
    EXPECT_EQ(refused.result, ApplyResult::Refused);
    ASSERT_FALSE(refused.conflicts.empty());
    EXPECT_NE(refused.conflicts[0].find("its sections have moved"), std::string::npos)
        << refused.conflicts[0];
    EXPECT_EQ(tb::readFile(styleIn("level")), before);
}

// The section map of a level: the sections follow one another without gaps and end at the
// file's end, and a grown sprite graphics section moves only what follows it.
TEST(StyleSectionMap, SectionsTileTheFileAndOnlyLaterOnesMoveWhenOneGrows) {
    tb::TempDir dir;
    tb::writeSampleLevel(dir.path());
    const auto bytes = tb::readFile(dir / "STYLE001.G24");
    const StyleHeader header = parseStyleHeader(bytes.data(), true);
    const auto length = static_cast<std::int64_t>(bytes.size());
    const auto map = styleSectionMap(header, length);
    ASSERT_FALSE(map.empty());
    std::int64_t at = 1;
    for (const StyleSection& s : map) {
        EXPECT_EQ(s.first, at) << s.name;
        at = s.end();
    }
    EXPECT_EQ(at, length + 1);
    EXPECT_EQ(styleSectionAt(map, 1), 0);
    EXPECT_EQ(styleSectionAt(map, length), static_cast<int>(map.size()) - 1);
    EXPECT_EQ(styleSectionAt(map, length + 1), -1);

    StyleHeader grown = header;
    grown.set_sprite_graphics_size(header.sprite_graphics_size() + 65536);
    const auto after = styleSectionMap(grown, length + 65536);
    ASSERT_EQ(after.size(), map.size());
    for (std::size_t i = 0; i < map.size(); ++i) {
        const bool graphics = std::string_view(map[i].name) == "sprite graphics";
        const bool later = std::string_view(map[i].name) == "sprite numbers";
        EXPECT_EQ(after[i].length, map[i].length + (graphics ? 65536 : 0)) << map[i].name;
        EXPECT_EQ(after[i].first, map[i].first + (later ? 65536 : 0)) << map[i].name;
    }
    // A header that claims more than the file holds gives sections clipped to the file.
    StyleHeader hostile = header;
    hostile.g24.car_info_size = 1 << 30;
    for (const StyleSection& s : styleSectionMap(hostile, length)) {
        EXPECT_GE(s.first, 1);
        EXPECT_LE(s.end(), length + 1);
    }
}

} // namespace
