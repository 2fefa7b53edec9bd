// Car packs applied to a level whose sections moved since the pack was made: a resize that
// dropped a car's deltas shrank the sprite graphics and moved every later section, yet a pack for
// another car still finds its bytes; a pack for the resized car's sprite is refused, naming it.

#include "car_pack_outcome.h"
#include "level_copies_fixture.h"

#include "exchange/gc3_moved.h"
#include "style/section_map.h"

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

using MovedSectionsFixture = tb::LevelCopiesFixture;

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

    // What the pack changes, told on the moved level: the car's field and its name.
    const auto shown = tb::runCli({"gc3", "show", forOther.string(), styleIn("level").string(),
                                   fxtIn("level").string(), "--workdir", (dir / "work").string()});
    ASSERT_EQ(shown.status, 0) << shown.err;
    EXPECT_NE(shown.out.find("Max Speed: " + field(other, "max_speed") + " -> " + speed),
              std::string::npos)
        << shown.out;
    EXPECT_NE(shown.out.find("-> \"Zipper\""), std::string::npos) << shown.out;

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
    EXPECT_EQ(tb::applyOutcome(applied2), "refused");
    ASSERT_FALSE(applied2.error().conflicts.empty());
    EXPECT_NE(applied2.error().conflicts[0].find("sprite " + std::to_string(other)),
              std::string::npos)
        << applied2.error().conflicts[0];

    // The pack for the resized car's sprite: refused with the sprite named, nothing written.
    const auto before = tb::readFile(styleIn("level"));
    const auto fxtBefore = tb::readFile(fxtIn("level"));
    BackupRegistry fresh;
    const CarPackApplied refused =
        applyCarPack(forResized, {styleIn("level"), fxtIn("level")}, platform, fresh);
    EXPECT_EQ(tb::applyOutcome(refused), "refused");
    const std::string name = session->cars.find(resized)->name;
    ASSERT_FALSE(refused.error().conflicts.empty());
    EXPECT_NE(
        refused.error().conflicts[0].find("sprite " + std::to_string(resized) + " (" + name + ")"),
        std::string::npos)
        << refused.error().conflicts[0];
    EXPECT_EQ(tb::readFile(styleIn("level")), before);
    EXPECT_EQ(tb::readFile(fxtIn("level")), fxtBefore);
    const auto cli = tb::runCli({"gc3", "apply", forResized.string(), styleIn("level").string(),
                                 fxtIn("level").string(), "--workdir", (dir / "work").string()});
    EXPECT_EQ(cli.status, 1);
    EXPECT_EQ(tb::readFile(styleIn("level")), before);
}

// A level with a page of CLUTs more: every section found from the end (palette index, car info,
// sprite info, sprite graphics) lies 65536 bytes later, the car records too.
TEST_F(MovedSectionsFixture, CarRecordsThatMovedWithTheColourTablesTakeThePackAndAreNamed) {
    load("pristine");
    const int car = twoCars().second;
    const std::string speed = field(car, "max_speed") == "55" ? "56" : "55";
    const fs::path pack = packOf("record", [&] { editField(car, "max_speed", speed); });
    copyPristine("level");
    auto bytes = tb::readFile(styleIn("level"));
    const StyleHeader header = parseStyleHeader(bytes.data(), true);
    const auto map = styleSectionMap(header, static_cast<std::int64_t>(bytes.size()));
    ASSERT_EQ(std::string_view(map[4].name), "palette index");
    bytes.insert(bytes.begin() + (map[4].first - 1), 65536, 0);
    tb::putI32(bytes, 20, header.g24.clut_size + 65536); // clut_size
    tb::writeFile(styleIn("level"), bytes);
    load("level");
    const std::string was = field(car, "max_speed");

    const auto shown = tb::runCli({"gc3", "show", pack.string(), styleIn("level").string(),
                                   fxtIn("level").string(), "--workdir", (dir / "work").string()});
    ASSERT_EQ(shown.status, 0) << shown.err;
    EXPECT_NE(shown.out.find("    Max Speed: " + was + " -> " + speed), std::string::npos)
        << shown.out;
    BackupRegistry fresh;
    const CarPackApplied applied =
        applyCarPack(pack, {styleIn("level"), fxtIn("level")}, platform, fresh);
    ASSERT_EQ(tb::applyOutcome(applied), "applied") << applied.message();
    load("level");
    EXPECT_EQ(field(car, "max_speed"), speed);
    // Only the record changed: the file is the level with the pack's bytes at their new place.
    const auto after = tb::readFile(styleIn("level"));
    ASSERT_EQ(after.size(), bytes.size());
    std::size_t differ = 0;
    for (std::size_t i = 0; i < after.size(); ++i) differ += after[i] != bytes[i] ? 1 : 0;
    EXPECT_GE(differ, 1u);
    EXPECT_LE(differ, 2u);
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
    EXPECT_EQ(tb::applyOutcome(refused), "refused");
    ASSERT_FALSE(refused.error().conflicts.empty());
    EXPECT_NE(refused.error().conflicts[0].find("its sections have moved"), std::string::npos)
        << refused.error().conflicts[0];
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
