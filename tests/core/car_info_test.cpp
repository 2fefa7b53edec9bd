#include "base/binary_file.h"
#include "cars/car_info_io.h"
#include "cars/car_names_io.h"
#include "fake_platform.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/style_session.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

constexpr std::size_t kLead = 10, kTail = 20; // filler around the section

std::vector<std::uint8_t> records(const std::vector<tb::CarSpec>& cars) {
    std::vector<std::uint8_t> out;
    for (const auto& car : cars) {
        auto bytes = tb::encodeCarInfo(car);
        out.insert(out.end(), bytes.begin(), bytes.end());
    }
    return out;
}

// A file holding only a car info section between some filler, loaded straight through
// loadCarInfo with sprite counts set by hand.
struct SectionFixture {
    tb::TempDir dir;
    StyleSession s;
    tb::FakePlatform p;
    std::filesystem::path path = dir / "STYLE001.G24";
    std::vector<std::uint8_t> bytes;

    SectionFixture() : s(AppOptions{false, {}, {}}) { s.options.workDir = dir.path(); }

    // Writes the records; `sectionSize` overrides the section's length, `tail` the filler after.
    bool load(const std::vector<tb::CarSpec>& cars, std::int64_t sectionSize = -1,
              std::size_t tail = kTail) {
        const auto section = records(cars);
        bytes.assign(kLead, 0xEE);
        bytes.insert(bytes.end(), section.begin(), section.end());
        bytes.insert(bytes.end(), tail, 0xEE);
        tb::writeFile(path, bytes);
        s.style.path = path;
        s.style.gStyleFileName = "STYLE001.G24";
        s.style.gMapNumber = 1;
        s.style.gSeekCarInfo = kLead + 1;
        s.style.gSeekCarInfoEnd =
            s.style.gSeekCarInfo + (sectionSize < 0 ? std::int64_t(section.size()) : sectionSize);
        BinaryFile f(s.errors);
        f.open(path, BinaryFile::Mode::Read);
        return loadCarInfo(s, f, p);
    }
    int save() {
        BinaryFile f(s.errors);
        f.open(path, BinaryFile::Mode::ReadWrite);
        return saveCarInfo(s, f, p);
    }
};

tb::CarSpec car(std::uint8_t vtype, std::int16_t spr, std::uint8_t model) {
    tb::CarSpec c;
    c.vtype = vtype;
    c.spr_num = spr;
    c.model = model;
    return c;
}

std::vector<std::string> linesFrom(const std::vector<std::string>& all, const std::string& first) {
    auto it = std::find_if(all.begin(), all.end(),
                           [&](const std::string& l) { return l.rfind(first, 0) == 0; });
    return {it, all.end()};
}

} // namespace

// Sprite counts: arrow 2, digits 3, boat 1, box 1, bus 2, car 4, object 2, ped 1, speedo 1,
// tank 2, traffic lights 1, train 2, train doors 1, bike 2, tram 1.
TEST(CarInfoLoad, EveryVehicleTypeGetsItsAbsoluteNumberThroughTheWholeLoad) {
    tb::TempDir dir;
    tb::StyleSpec spec;
    const std::pair<tb::SpriteType, int> counts[] = {{tb::SPR_ARROW, 2},
                                                     {tb::SPR_DIGITS, 3},
                                                     {tb::SPR_BOAT, 1},
                                                     {tb::SPR_BOX, 1},
                                                     {tb::SPR_BUS, 2},
                                                     {tb::SPR_CAR, 4},
                                                     {tb::SPR_OBJECT, 2},
                                                     {tb::SPR_PED, 1},
                                                     {tb::SPR_SPEEDO, 1},
                                                     {tb::SPR_TANK, 2},
                                                     {tb::SPR_TRAFFIC_LIGHTS, 1},
                                                     {tb::SPR_TRAIN, 2},
                                                     {tb::SPR_TRDOORS, 1},
                                                     {tb::SPR_BIKE, 2},
                                                     {tb::SPR_TRAM, 1}};
    int x = 0;
    for (auto [type, n] : counts)
        for (int i = 0; i < n; ++i) {
            tb::SpriteSpec sprite;
            sprite.type = type;
            sprite.x = x;
            x += 4;
            sprite.w = sprite.h = 2;
            spec.sprites.push_back(sprite);
        }
    tb::sortAndCountSprites(spec);
    spec.cars = {car(0, 1, 9),  car(4, 0, 1),  car(1, 2, 4),   car(2, 3, 5),   car(3, 1, 3),
                 car(8, 0, 11), car(9, 0, 12), car(13, 0, 13), car(14, 1, 37), car(7, 5, 2)};
    tb::writeFile(dir / "STYLE001.G24", tb::buildStyle(spec));
    tb::writeFile(dir / "ENGLISH.FXT", tb::encodeFxt({"[1001]Hello there", "[car1]Bug", "[]"}));

    StyleSession s(AppOptions{false, dir.path(), {}});
    tb::FakePlatform p;
    prepareStyle(s.style, dir / "STYLE001.G24", kLoadSprites);
    ASSERT_EQ(initHeader(s, p, standardLoaders()), LoadOutcome::Loaded) << s.stepText;

    const auto offsets = tb::sectionOffsets(spec);
    const std::vector<std::string> expected = {"loadCarInfoSeek:" +
                                                   std::to_string(offsets.carInfo.offset + 1),
                                               "ABSN(9) RSN:1  vtype:0 model:9",
                                               "ABSN(10) RSN:0  vtype:4 model:1",
                                               "ABSN(12) RSN:2  vtype:1 model:4",
                                               "ABSN(13) RSN:3  vtype:2 model:5",
                                               "ABSN(25) RSN:1  vtype:3 model:3",
                                               "ABSN(21) RSN:0  vtype:8 model:11",
                                               "ABSN(26) RSN:0  vtype:9 model:12",
                                               "ABSN(6) RSN:0  vtype:13 model:13",
                                               "ABSN(19) RSN:1  vtype:14 model:37",
                                               "Unknown ABSN(0) RSN:5  vtype:7 model:2",
                                               "10 car_infos loaded",
                                               "26 highest spr_num loaded",
                                               "6 lowest spr_num loaded"};
    auto got = linesFrom(p.detailLines, "loadCarInfoSeek:");
    got.resize(std::min(got.size(), expected.size()));
    EXPECT_EQ(got, expected);

    for (std::size_t i = 0; i < 9; ++i) {
        const int asn[] = {9, 10, 12, 13, 25, 21, 26, 6, 19};
        const CarEntry* entry = s.cars.find(asn[i]);
        ASSERT_NE(entry, nullptr) << asn[i];
        EXPECT_EQ(entry->fileSeek, std::int32_t(offsets.carRecords[i] + 1));
        EXPECT_EQ(entry->info.vtype, spec.cars[i].vtype);
    }
    EXPECT_EQ(s.cars.find(10)->name, "Bug"); // from ENGLISH.FXT, by model
    EXPECT_EQ(s.cars.find(9)->name, "");     // model 9 has no entry in this file
    EXPECT_EQ(s.cars.slots.size(), 27u);
    EXPECT_EQ(s.cars.find(11), nullptr);
}

TEST(CarInfoLoad, FieldsAndDoorsAreReadWhereTheFileHasThem) {
    SectionFixture f;
    tb::CarSpec a = car(4, 0, 7);
    a.width = -3;
    a.remap24[11] = {-1, 2, -300};
    a.remap8[5] = 200;
    a.value = {1, 2, 3, 4};
    a.cx = 250;
    a.moment = -123456789;
    a.handbrake_slide_value = 0x7FFFFFFF;
    a.fast_change_flag = 9;
    a.doors = {{1, -2, 3, 4}, {-5, 6, 7, 8}};
    tb::CarSpec b = car(4, 1, 8);
    b.weight = 4321;
    ASSERT_TRUE(f.load({a, b}));

    const CarEntry& ea = *f.s.cars.find(1);
    EXPECT_EQ(ea.info.width, -3);
    EXPECT_EQ(ea.info.remap24[11][2], -300);
    EXPECT_EQ(ea.info.remap8[5], 200);
    EXPECT_EQ(ea.info.value[3], 4);
    EXPECT_EQ(ea.info.cx, 250);
    EXPECT_EQ(ea.info.moment, -123456789);
    EXPECT_EQ(ea.info.handbrake_slide_value, 0x7FFFFFFF);
    EXPECT_EQ(ea.info.fast_change_flag, 9);
    EXPECT_EQ(ea.info.doors, 2);
    ASSERT_EQ(ea.doorList.size(), 2u);
    EXPECT_EQ(ea.doorList[1].rpx, -5);
    EXPECT_EQ(ea.doorList[1].delta, 8);
    // The next record starts right after the doors: 174 + 2 x 8 bytes on.
    const CarEntry& eb = *f.s.cars.find(2);
    EXPECT_EQ(eb.fileSeek, ea.fileSeek + 174 + 16);
    EXPECT_EQ(eb.info.weight, 4321);
    EXPECT_TRUE(eb.doorList.empty());
}

TEST(CarInfoLoad, LaterRecordWithTheSameNumberWinsAndBothCount) {
    SectionFixture f;
    tb::CarSpec first = car(4, 2, 1), second = car(1, 2, 2);
    first.weight = 1;
    second.weight = 2;
    ASSERT_TRUE(f.load({first, second}));
    EXPECT_EQ(f.s.cars.find(3)->info.weight, 2);
    EXPECT_EQ(f.s.cars.find(3)->fileSeek, std::int32_t(kLead + 1 + 174));
    EXPECT_EQ(f.s.cars.count, 2);
    EXPECT_NE(std::find(f.p.detailLines.begin(), f.p.detailLines.end(), "2 car_infos loaded"),
              f.p.detailLines.end());
}

TEST(CarInfoLoad, NamesComeFromTheNamesTableAndAModelPast90HasNone) {
    SectionFixture f;
    f.s.names.names[7] = "Juggernaut";
    ASSERT_TRUE(f.load({car(4, 0, 7), car(4, 1, 91), car(4, 2, 255)}));
    EXPECT_EQ(f.s.cars.find(1)->name, "Juggernaut");
    EXPECT_EQ(f.s.cars.find(2)->name, "");
    EXPECT_EQ(f.s.cars.find(3)->name, "");
}

TEST(CarInfoLoad, EmptySectionLoadsNothing) {
    SectionFixture f;
    ASSERT_TRUE(f.load({}));
    EXPECT_EQ(
        linesFrom(f.p.detailLines, "loadCarInfoSeek:"),
        (std::vector<std::string>{"loadCarInfoSeek:11", "0 car_infos loaded",
                                  "0 highest spr_num loaded", "32000 lowest spr_num loaded"}));
    EXPECT_TRUE(f.p.shownMessages.empty());
}

TEST(CarInfoFailures, SectionRunningPastTheEndOfTheFileKeepsWhatWasRead) {
    const std::vector<tb::CarSpec> cars = {car(4, 0, 1), car(4, 1, 2), car(4, 2, 3)};
    // The header claims a longer section than the file holds.
    SectionFixture f;
    EXPECT_FALSE(f.load(cars, 10000, 0));
    EXPECT_EQ(f.p.messageTexts(), std::vector<std::string>{"Unexpected EOF during loadCarInfo"});
    EXPECT_EQ(f.s.cars.count, 3);
    EXPECT_NE(f.s.cars.find(3), nullptr);

    // The file ends inside the third record: that one is not taken.
    SectionFixture cut;
    auto bytes = records(cars);
    const auto sectionSize = static_cast<std::int64_t>(bytes.size());
    bytes.resize(bytes.size() - 100);
    bytes.insert(bytes.begin(), kLead, 0xEE);
    tb::writeFile(cut.path, bytes);
    cut.s.style.gSeekCarInfo = kLead + 1;
    cut.s.style.gSeekCarInfoEnd = kLead + 1 + sectionSize;
    BinaryFile file(cut.s.errors);
    file.open(cut.path, BinaryFile::Mode::Read);
    EXPECT_FALSE(loadCarInfo(cut.s, file, cut.p));
    EXPECT_EQ(cut.p.messageTexts(), std::vector<std::string>{"Unexpected EOF during loadCarInfo"});
    EXPECT_EQ(cut.s.cars.count, 2);
    EXPECT_EQ(cut.s.cars.find(3), nullptr);
}

TEST(CarInfoFailures, WildDoorCountsNeitherCrashNorShiftTheNextRecord) {
    // Negative: no door records, the next record follows after 174 bytes.
    SectionFixture negative;
    tb::CarSpec a = car(4, 0, 1);
    a.doorsOverride = -3;
    ASSERT_TRUE(negative.load({a, car(4, 1, 2)}));
    EXPECT_TRUE(negative.s.cars.find(1)->doorList.empty());
    EXPECT_EQ(negative.s.cars.find(2)->fileSeek, std::int32_t(kLead + 1 + 174));

    // Huge on the last record: the door records are read as far as the file goes.
    SectionFixture huge;
    tb::CarSpec b = car(4, 0, 1);
    b.doors = {{1, 2, 3, 4}};
    b.doorsOverride = 32767;
    EXPECT_FALSE(huge.load({b}));
    EXPECT_EQ(huge.p.messageTexts(), std::vector<std::string>{"Unexpected EOF during loadCarInfo"});
    const CarEntry* entry = huge.s.cars.find(1);
    ASSERT_NE(entry, nullptr);
    // One real door and the 20 filler bytes after the section: 2 whole records more.
    EXPECT_EQ(entry->doorList.size(), 3u);
    EXPECT_EQ(entry->doorList[0].delta, 4);
}

TEST(CarInfoFailures, NegativeSpriteCountsRaiseSubscriptOutOfRange) {
    SectionFixture f;
    f.s.sprites.spriteNumbers[0] = -100;
    EXPECT_FALSE(f.load({car(4, 0, 1)}));
    EXPECT_EQ(f.s.errors.pending(), err::SubscriptOutOfRange);
}

TEST(CarInfoSave, EditedRecordIsWrittenInPlaceAndNothingElseChanges) {
    SectionFixture f;
    tb::CarSpec a = car(4, 0, 1), b = car(4, 1, 2), c = car(4, 2, 3);
    b.doors = {{1, 2, 3, 4}, {5, 6, 7, 8}};
    ASSERT_TRUE(f.load({a, b, c}));
    const auto original = tb::readFile(f.path);

    CarEntry& entry = *f.s.cars.find(2);
    entry.info.width = 99;
    entry.info.rbp_mass = 163840;
    entry.doorList[1].object = -7;
    f.s.style.gSaveCarInfo.push_back(2);
    f.s.style.gSaveCarInfo.push_back(2); // edited twice before the save: written twice, same bytes
    EXPECT_EQ(f.save(), 0);
    EXPECT_EQ(f.s.style.gSaveCarInfo, std::vector<std::int16_t>{0});

    b.width = 99;
    b.rbp_mass = 163840;
    b.doors[1].object = -7;
    auto expected = original;
    const auto record = tb::encodeCarInfo(b);
    std::copy(record.begin(), record.end(), expected.begin() + kLead + 174);
    EXPECT_EQ(tb::readFile(f.path), expected);
}

TEST(CarInfoSave, RecordKeepsItsLengthWhateverTheDoorsFieldSays) {
    SectionFixture f;
    ASSERT_TRUE(f.load({car(4, 0, 1), car(4, 1, 2)}));
    const auto original = tb::readFile(f.path);
    // A car without doors whose doors field now claims five: still 174 bytes written.
    f.s.cars.find(1)->info.doors = 5;
    f.s.style.gSaveCarInfo.push_back(1);
    EXPECT_EQ(f.save(), 0);
    const auto after = tb::readFile(f.path);
    ASSERT_EQ(after.size(), original.size());
    for (std::size_t i = 0; i < after.size(); ++i)
        if (i != kLead + 172) EXPECT_EQ(after[i], original[i]) << "byte " << i;
    EXPECT_EQ(after[kLead + 172], 5);
}

TEST(CarInfoSave, NumbersWithoutALoadedCarWriteNothing) {
    SectionFixture f;
    ASSERT_TRUE(f.load({car(4, 0, 1), car(4, 2, 2)})); // slots 1 and 3
    const auto original = tb::readFile(f.path);
    f.s.style.gSaveCarInfo = {0, 2};
    EXPECT_EQ(f.save(), 0);
    f.s.style.gSaveCarInfo = {0, 30000}; // past the table
    EXPECT_EQ(f.save(), err::SubscriptOutOfRange);
    EXPECT_EQ(tb::readFile(f.path), original);
    EXPECT_EQ(f.s.style.gSaveCarInfo, std::vector<std::int16_t>{0});
}

TEST(CarInfoText, DumpListsEveryFieldInOrderWithRawFixedPointValues) {
    SectionFixture f;
    tb::CarSpec a = car(4, 3, 7);
    a.remap24[1] = {45, -2, 20};
    a.remap8[11] = 17;
    a.value = {10, 15, 20, 25};
    a.rbp_mass = 98304;
    a.doors = {{1, 2, 3, 4}};
    f.s.names.names[7] = "Juggernaut";
    ASSERT_TRUE(f.load({a}));
    tb::FakePlatform p;
    dumpCarInfo(f.s, p, 4);
    const auto& l = p.detailLines;
    ASSERT_EQ(l.size(), 78u);
    EXPECT_EQ(l[0], "car_info fileSeek:11");
    EXPECT_EQ(l[1], " Car_Info for:Juggernaut");
    EXPECT_EQ(l[2], " width:22");
    EXPECT_EQ(l[5], " spr_num:3");
    EXPECT_EQ(l[12], " handling:7");
    EXPECT_EQ(l[15], " remap24[1]:");
    EXPECT_EQ(l[16], " H L S: 45 -2 20");
    EXPECT_EQ(l[48], " remap8[11]:17");
    EXPECT_EQ(l[49], " vtype:4");
    EXPECT_EQ(l[53], " value[0]:10");
    EXPECT_EQ(l[56], " value[3]:25");
    EXPECT_EQ(l[57], " cx,cy:11,22");
    EXPECT_EQ(l[58], " moment:229376");
    EXPECT_EQ(l[59], " rbp_mass:98304");
    EXPECT_EQ(l[66], " turn_ratio:300");
    EXPECT_EQ(l[68], " steering_wheel_offset:-10");
    EXPECT_EQ(l[76], " fast_change_flag:0");
    EXPECT_EQ(l[77], " doors:1");

    tb::FakePlatform none;
    dumpCarInfo(f.s, none, 1);
    dumpCarInfo(f.s, none, 999);
    EXPECT_TRUE(none.detailLines.empty());
}

TEST(CarInfoText, CarInfoFileIsWrittenWhenTheDebugMenuSaysSo) {
    SectionFixture f;
    f.s.options.dumps.carInfo = true;
    tb::CarSpec a = car(4, 1, 7), b = car(99, 0, 1);
    a.doors = {{-1, 2, 30, 4}, {5, 6, 7, 8}};
    a.sound_function = 3;
    f.s.names.names[7] = "Juggernaut";
    ASSERT_TRUE(f.load({a, b}));
    std::ifstream in(f.dir / "CARINFO1.txt");
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    EXPECT_EQ(lines, (std::vector<std::string>{
                         "STYLE001.G24", "Carinfo data as follows is loaded per cds.doc 3.1.3",
                         "Absolute sprite_num calculated by offseting loaded RSN with 3.2.4 "
                         "sprite_numbers",
                         "Sprite(2) RSN:1", "     width:22 height:44 depth:20 doors:2",
                         "           vtype:4 model:7 name:Juggernaut value:10",
                         "          engine:1 radio:1 horn:2",
                         "        sound_function:3 fast_change_flag:0",
                         "     DOOR:1   rpx:-1  rpy:2  object:30  delta:4",
                         "     DOOR:2   rpx:5  rpy:6  object:7  delta:8", ""}));
}
