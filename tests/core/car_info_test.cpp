#include "base/binary_file.h"
#include "cars/car_info_io.h"
#include "fake_platform.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/session_io.h"
#include "sprite_fixture.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

constexpr std::size_t kLead = 10; // filler before the section

std::vector<std::uint8_t> records(const std::vector<tb::CarSpec>& cars) {
    std::vector<std::uint8_t> out;
    for (const auto& car : cars) {
        auto bytes = tb::encodeCarInfo(car);
        out.insert(out.end(), bytes.begin(), bytes.end());
    }
    return out;
}

// A file holding a car info section between filler, loaded straight through loadCarInfo.
struct SectionFixture {
    tb::TempDir dir;
    StyleSession s{AppOptions{false, dir.path(), {}}};
    tb::FakePlatform p;
    std::filesystem::path path = dir / "STYLE001.G24";

    // `sectionSize` overrides the section's length, `tail` is the filler after the records.
    bool load(const std::vector<tb::CarSpec>& cars, std::int64_t sectionSize = -1,
              std::size_t tail = 20) {
        auto bytes = records(cars);
        const auto size = static_cast<std::int64_t>(bytes.size());
        bytes.insert(bytes.begin(), kLead, 0xEE);
        bytes.insert(bytes.end(), tail, 0xEE);
        tb::writeFile(path, bytes);
        s.style.gStyleFileName = "STYLE001.G24";
        s.style.gMapNumber = 1;
        s.style.gSeekCarInfo = kLead + 1;
        s.style.gSeekCarInfoEnd = kLead + 1 + (sectionSize < 0 ? size : sectionSize);
        BinaryFile f(s.errors);
        EXPECT_TRUE(f.open(path, BinaryFile::Mode::Read));
        return loadCarInfo(s, f, p);
    }
    int save() {
        BinaryFile f(s.errors);
        EXPECT_TRUE(f.open(path, BinaryFile::Mode::ReadWrite));
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

const std::vector<std::string> kEofMessage = {"Unexpected EOF during loadCarInfo"};

} // namespace

TEST(CarInfoLoad, EveryVehicleTypeGetsItsAbsoluteNumberThroughTheWholeLoad) {
    // Sprite counts: arrow 2, digits 3, boat 1, box 1, bus 2, car 4, object 2, ped 1, speedo 1,
    // tank 2, traffic lights 1, train 2, train doors 1, bike 2, tram 1.
    tb::StyleSpec layout;
    const int counts[] = {2, 3, 1, 1, 2, 4, 2, 1, 1, 2, 1, 2, 1, 2, 1};
    for (int type = 0, x = 0; type < 15; ++type)
        for (int i = 0; i < counts[type]; ++i, x += 4) {
            tb::SpriteSpec sprite;
            sprite.type = static_cast<tb::SpriteType>(type);
            sprite.x = x;
            sprite.w = sprite.h = 2;
            layout.sprites.push_back(sprite);
        }
    tb::sortAndCountSprites(layout);
    layout.cars = {car(0, 1, 9),  car(4, 0, 1),  car(1, 2, 4),   car(2, 3, 5),   car(3, 1, 3),
                   car(8, 0, 11), car(9, 0, 12), car(13, 0, 13), car(14, 1, 37), car(7, 5, 2)};
    tb::TempDir dir;
    tb::writeFile(dir / "STYLE001.G24", tb::buildStyle(layout));
    tb::writeFile(dir / "ENGLISH.FXT", tb::encodeFxt({"[1001]Hello there", "[car1]Bug", "[]"}));

    StyleSession s(AppOptions{false, dir.path(), {}});
    tb::FakePlatform p;
    prepareStyle(s.style, dir / "STYLE001.G24", kLoadSprites);
    ASSERT_TRUE(initHeader(s, p, standardLoaders())) << s.stepText;

    const auto offsets = tb::sectionOffsets(layout);
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
    auto got = tb::detailsFrom(p, "loadCarInfoSeek:");
    got.resize(std::min(got.size(), expected.size()));
    EXPECT_EQ(got, expected);

    const int asn[] = {9, 10, 12, 13, 25, 21, 26, 6, 19};
    for (std::size_t i = 0; i < 9; ++i) {
        const CarEntry* entry = s.cars.find(asn[i]);
        ASSERT_NE(entry, nullptr) << asn[i];
        EXPECT_EQ(entry->fileSeek, std::int32_t(offsets.carRecords[i] + 1));
    }
    EXPECT_EQ(s.cars.find(10)->name, "Bug"); // by model, from ENGLISH.FXT
    EXPECT_EQ(s.cars.find(9)->name, "");
    EXPECT_EQ(s.cars.slots.size(), 27u);
}

TEST(CarInfoLoad, RecordsFollowTheirDoorsAndTheLaterOfTwoWins) {
    SectionFixture f;
    tb::CarSpec a = car(4, 0, 7), b = car(4, 1, 91), first = car(1, 2, 1), second = car(2, 2, 2);
    a.remap24[11] = {-1, 2, -300};
    a.cx = 250; // the byte 0xFA
    a.moment = -123456789;
    a.handbrake_slide_value = 0x7FFFFFFF;
    a.doors = {{1, -2, 3, 4}, {-5, 6, 7, 8}};
    first.weight = 1;
    second.weight = 2;
    f.s.names.names[7] = "Juggernaut";
    ASSERT_TRUE(f.load({a, b, first, second}));

    const CarEntry& ea = *f.s.cars.find(1);
    EXPECT_EQ(ea.name, "Juggernaut");
    EXPECT_EQ(ea.info.remap24[11][2], -300);
    EXPECT_EQ(ea.info.cx, -6); // the game reads cx as a signed byte
    EXPECT_EQ(ea.info.moment, -123456789);
    EXPECT_EQ(ea.info.handbrake_slide_value, 0x7FFFFFFF);
    ASSERT_EQ(ea.doorList.size(), 2u);
    EXPECT_EQ(ea.doorList[1].rpx, -5);
    EXPECT_EQ(ea.doorList[1].delta, 8);
    EXPECT_EQ(f.s.cars.find(2)->fileSeek, ea.fileSeek + 174 + 16);
    EXPECT_EQ(f.s.cars.find(2)->name, ""); // model 91 is past the names table
    EXPECT_EQ(f.s.cars.find(3)->info.weight, 2);
    EXPECT_EQ(f.s.cars.count, 4);
}

TEST(CarInfoFailures, SectionRunningPastTheEndOfTheFileKeepsWhatWasRead) {
    const std::vector<tb::CarSpec> cars = {car(4, 0, 1), car(4, 1, 2), car(4, 2, 3)};
    SectionFixture f; // the header claims more than the file holds
    EXPECT_FALSE(f.load(cars, 10000, 0));
    EXPECT_EQ(f.p.messageTexts(), kEofMessage);
    EXPECT_EQ(f.s.cars.count, 3);
    EXPECT_NE(f.s.cars.find(3), nullptr);

    SectionFixture cut; // the file ends inside the third record, which is not taken
    ASSERT_TRUE(cut.load(cars));
    std::filesystem::resize_file(cut.path, kLead + 3 * 174 - 100);
    BinaryFile file(cut.s.errors);
    ASSERT_TRUE(file.open(cut.path, BinaryFile::Mode::Read));
    EXPECT_FALSE(loadCarInfo(cut.s, file, cut.p));
    EXPECT_EQ(cut.p.messageTexts(), kEofMessage);
    EXPECT_EQ(cut.s.cars.count, 2);
    EXPECT_EQ(cut.s.cars.find(3), nullptr);
}

TEST(CarInfoFailures, WildDoorCountsAndSpriteCountsEndCleanly) {
    SectionFixture negative; // no door records: the next record follows after 174 bytes
    tb::CarSpec a = car(4, 0, 1);
    a.doorsOverride = -3;
    ASSERT_TRUE(negative.load({a, car(4, 1, 2)}));
    EXPECT_TRUE(negative.s.cars.find(1)->doorList.empty());
    EXPECT_EQ(negative.s.cars.find(2)->fileSeek, std::int32_t(kLead + 1 + 174));

    SectionFixture huge; // door records as far as the file goes: 1 real + 2 from the filler
    tb::CarSpec b = car(4, 0, 1);
    b.doors = {{1, 2, 3, 4}};
    b.doorsOverride = 32767;
    EXPECT_FALSE(huge.load({b}));
    EXPECT_EQ(huge.p.messageTexts(), kEofMessage);
    ASSERT_EQ(huge.s.cars.find(1)->doorList.size(), 3u);
    EXPECT_EQ(huge.s.cars.find(1)->doorList[0].delta, 4);

    SectionFixture below; // counts that put a car below the table
    below.s.sprites.spriteNumbers[0] = -100;
    EXPECT_FALSE(below.load({car(4, 0, 1)}));
    EXPECT_EQ(below.s.errors.pending(), err::SubscriptOutOfRange);
}

TEST(CarInfoSave, EditedRecordIsWrittenInPlaceAndNothingElseChanges) {
    SectionFixture f;
    tb::CarSpec a = car(4, 0, 1), b = car(4, 1, 2), c = car(4, 3, 3);
    b.doors = {{1, 2, 3, 4}, {5, 6, 7, 8}};
    ASSERT_TRUE(f.load({a, b, c}));
    const auto original = tb::readFile(f.path);

    CarEntry& entry = *f.s.cars.find(2);
    entry.info.width = 99;
    entry.info.rbp_mass = 163840;
    entry.doorList[1].object = -7;
    // Edited twice before the save, and a number whose slot holds no car.
    f.s.style.gSaveCarInfo = {0, 2, 2, 3};
    EXPECT_EQ(f.save(), 0);
    EXPECT_EQ(f.s.style.gSaveCarInfo, std::vector<std::int16_t>{0});

    b.width = 99;
    b.rbp_mass = 163840;
    b.doors[1].object = -7;
    auto expected = original;
    const auto record = tb::encodeCarInfo(b);
    std::copy(record.begin(), record.end(), expected.begin() + kLead + 174);
    EXPECT_EQ(tb::readFile(f.path), expected);

    f.s.style.gSaveCarInfo = {0, 30000}; // past the table
    EXPECT_EQ(f.save(), err::SubscriptOutOfRange);
    EXPECT_EQ(tb::readFile(f.path), expected);
}

TEST(CarInfoSave, RecordKeepsItsLengthWhateverTheDoorsFieldSays) {
    SectionFixture f;
    ASSERT_TRUE(f.load({car(4, 0, 1), car(4, 1, 2)}));
    auto expected = tb::readFile(f.path);
    f.s.cars.find(1)->info.doors = 5; // no door records were read: still 174 bytes
    f.s.style.gSaveCarInfo.push_back(1);
    EXPECT_EQ(f.save(), 0);
    expected[kLead + 172] = 5;
    EXPECT_EQ(tb::readFile(f.path), expected);
}

TEST(CarInfoText, DumpListsEveryFieldInOrderWithRawFixedPointValues) {
    SectionFixture f;
    tb::CarSpec a = car(4, 3, 7);
    a.remap24[1] = {45, -2, 20};
    a.remap8[11] = 17;
    a.rbp_mass = 98304;
    a.doors = {{1, 2, 3, 4}};
    f.s.names.names[7] = "Juggernaut";
    ASSERT_TRUE(f.load({a}));
    tb::FakePlatform p;
    dumpCarInfo(f.s, p, 4);
    dumpCarInfo(f.s, p, 1);   // no car there
    dumpCarInfo(f.s, p, 999); // past the table
    const auto& l = p.detailLines;
    ASSERT_EQ(l.size(), 78u);
    const std::pair<std::size_t, const char*> spots[] = {{0, "car_info fileSeek:11"},
                                                         {1, " Car_Info for:Juggernaut"},
                                                         {2, " width:22"},
                                                         {5, " spr_num:3"},
                                                         {12, " handling:7"},
                                                         {15, " remap24[1]:"},
                                                         {16, " H L S: 45 -2 20"},
                                                         {48, " remap8[11]:17"},
                                                         {49, " vtype:4"},
                                                         {53, " value[0]:10"},
                                                         {56, " value[3]:25"},
                                                         {57, " cx,cy:11,22"},
                                                         {58, " moment:229376"},
                                                         {59, " rbp_mass:98304"},
                                                         {66, " turn_ratio:300"},
                                                         {68, " steering_wheel_offset:-10"},
                                                         {76, " fast_change_flag:0"},
                                                         {77, " doors:1"}};
    for (auto [i, text] : spots) EXPECT_EQ(l[i], text);
}

TEST(CarInfoText, CarInfoFileIsWrittenWhenTheDebugMenuSaysSo) {
    SectionFixture f;
    f.s.options.dumps.carInfo = true;
    tb::CarSpec a = car(4, 1, 7);
    a.doors = {{-1, 2, 30, 4}, {5, 6, 7, 8}};
    a.sound_function = 3;
    f.s.names.names[7] = "Juggernaut";
    ASSERT_TRUE(f.load({a, car(99, 0, 1)}));
    EXPECT_EQ(
        tb::readLines(f.dir / "CARINFO1.txt"),
        (std::vector<std::string>{
            "STYLE001.G24", "Carinfo data as follows is loaded per cds.doc 3.1.3",
            "Absolute sprite_num calculated by offseting loaded RSN with 3.2.4 "
            "sprite_numbers",
            "Sprite(2) RSN:1", "     width:22 height:44 depth:20 doors:2",
            "           vtype:4 model:7 name:Juggernaut value:10",
            "          engine:1 radio:1 horn:2", "        sound_function:3 fast_change_flag:0",
            "     DOOR:1   rpx:-1  rpy:2  object:30  delta:4",
            "     DOOR:2   rpx:5  rpy:6  object:7  delta:8", ""}));
}
