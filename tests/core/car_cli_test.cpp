#include "base/file_stamp.h"
#include "cars/fixed_point.h"
#include "cli_runner.h"
#include "sample_level.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>

using namespace torquil;
namespace tb = torquil::testing;
using tb::contains;
using tb::lines;
using tb::runCli;

namespace {

// The sample level in a temporary folder, with what the builder knows about its cars.
struct Sample {
    tb::TempDir dir, work;
    tb::StyleSpec layout = tb::sampleSpec24();
    tb::SectionOffsets offsets = tb::sectionOffsets(layout);
    std::string style = (dir / "STYLE001.G24").string();

    Sample() { tb::writeSampleLevel(dir.path()); }
    int asnOf(std::size_t car) const {
        return tb::absoluteSpriteNumber(layout.spriteNumbers, layout.cars[car].vtype,
                                        layout.cars[car].spr_num);
    }
    // The first car record with doors, of vtype 4, whose number no later record takes.
    std::size_t carWithDoors() const {
        for (std::size_t i = 0; i < layout.cars.size(); ++i)
            if (!layout.cars[i].doors.empty() && layout.cars[i].vtype == 4) return i;
        return 0;
    }
    tb::CliRun run(std::vector<std::string> args) const {
        args.insert(args.begin() + 1, {"--workdir", work.path().string()});
        return runCli(std::move(args));
    }
};

} // namespace

TEST(CarCli, CarPrintsTheRecordDumpOfOneCar) {
    Sample s;
    const std::size_t k = s.carWithDoors();
    auto r = s.run({"car", s.style, std::to_string(s.asnOf(k))});
    ASSERT_EQ(r.status, 0) << r.err;
    const auto out = lines(r.out);
    ASSERT_EQ(out.size(), 78u);
    EXPECT_EQ(out[0], "car_info fileSeek:" + std::to_string(s.offsets.carRecords[k] + 1));
    EXPECT_EQ(out[2], " width:" + std::to_string(s.layout.cars[k].width));
    EXPECT_EQ(out[77], " doors:" + std::to_string(s.layout.cars[k].doors.size()));

    auto none = s.run({"car", s.style, "1"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.out, "");
    EXPECT_TRUE(contains(none.err, "no car record at absolute sprite number 1"));
}

TEST(CarCli, CarsListsEveryCarInEachFormat) {
    Sample s;
    auto json = s.run({"cars", s.style, "--format", "json"});
    ASSERT_EQ(json.status, 0) << json.err;
    const auto list = nlohmann::json::parse(json.out);
    ASSERT_EQ(list.size(), 38u);
    const std::size_t k = s.carWithDoors();
    const tb::CarSpec& layout = s.layout.cars[k];
    const auto car = std::find_if(list.begin(), list.end(),
                                  [&](const auto& c) { return c["asn"] == s.asnOf(k); });
    ASSERT_NE(car, list.end());
    EXPECT_EQ((*car)["width"], layout.width);
    EXPECT_EQ((*car)["moment"], layout.moment); // raw
    EXPECT_EQ((*car)["rbp_mass"].get<double>(), *parseNumber(float32in(layout.rbp_mass)));
    EXPECT_EQ((*car)["value"], layout.value);
    ASSERT_EQ((*car)["door_records"].size(), layout.doors.size());
    EXPECT_EQ((*car)["door_records"][0]["delta"], layout.doors[0].delta);

    auto csv = s.run({"cars", s.style, "--format", "csv"});
    ASSERT_EQ(csv.status, 0);
    const auto rows = lines(csv.out);
    ASSERT_EQ(rows.size(), 39u);
    auto cells = [](const std::string& row) { return std::count(row.begin(), row.end(), ',') + 1; };
    for (const auto& row : rows) EXPECT_EQ(cells(row), cells(rows[0])) << row;
    EXPECT_TRUE(contains(rows[0], ",door[0].rpx,"));

    auto text = s.run({"cars", s.style});
    ASSERT_EQ(text.status, 0);
    const auto textLines = lines(text.out);
    EXPECT_EQ(std::count(textLines.begin(), textLines.end(), ""), 37);
    EXPECT_TRUE(contains(text.out, "asn=" + std::to_string(s.asnOf(k)) + "\n"));
    EXPECT_TRUE(contains(text.out, "rbp_mass=" + float32in(layout.rbp_mass) + "\n"));
    EXPECT_EQ(s.run({"cars", s.style, "--format", "xml"}).status, 2);
}

TEST(CarCli, CarSetClampsWithTheEditorsWordsAndWritesOnlyThatRecord) {
    Sample s;
    const std::size_t k = s.carWithDoors();
    const auto before = tb::readFile(s.style);
    auto r = s.run({"car-set", s.style, std::to_string(s.asnOf(k)), "width=300", "rbp_mass=2.5",
                    "door[0].object=7"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(contains(r.err, "width=300: txtbox valve set to H val (255)"));
    EXPECT_TRUE(contains(r.out, "width: " + std::to_string(s.layout.cars[k].width) + " -> 255\n"));
    EXPECT_TRUE(
        contains(r.out, "rbp_mass: " + float32in(s.layout.cars[k].rbp_mass) + " -> 2.500\n"));

    tb::CarSpec edited = s.layout.cars[k];
    edited.width = 255;
    edited.rbp_mass = 163840;
    edited.doors[0].object = 7;
    auto expected = before;
    const auto record = tb::encodeCarInfo(edited);
    std::copy(record.begin(), record.end(), expected.begin() + s.offsets.carRecords[k]);
    EXPECT_EQ(tb::readFile(s.style), expected);

    // The values just stored: the style file is not written again.
    const FileStamp saved = stampOf(s.style);
    auto again = s.run({"car-set", s.style, std::to_string(s.asnOf(k)), "width=255", "rbp_mass=2.5",
                        "door[0].object=7"});
    ASSERT_EQ(again.status, 0) << again.err;
    EXPECT_EQ(again.out, "nothing changed\n");
    EXPECT_EQ(stampOf(s.style), saved);

    auto low = s.run({"car-set", s.style, std::to_string(s.asnOf(k)), "spr_num=-5"});
    EXPECT_EQ(low.status, 0);
    EXPECT_TRUE(contains(low.err, "spr_num=-5: txtbox valve set to L val (0)"));
}

TEST(CarCli, CarSetRefusesBadFieldsAndValuesWithoutWriting) {
    Sample s;
    const auto style = tb::readFile(s.style);
    const auto fxt = tb::readFile(s.dir / "ENGLISH.FXT");
    const std::string asn = std::to_string(s.asnOf(0));
    const std::vector<std::vector<std::string>> refused = {
        {"width=10", "wheels=4"}, // unknown field, even after a good one
        {"width=abc"},
        {"rbp_mass=-"},
        {"width"},
        {"cy=250"},        // in the editor's range, but not in the signed byte the game reads
        {"door[9].rpx=1"}, // no such door
        {"remap24[12].H=1"}};
    for (const auto& words : refused) {
        std::vector<std::string> args = {"car-set", s.style, asn};
        args.insert(args.end(), words.begin(), words.end());
        auto r = s.run(args);
        EXPECT_EQ(r.status, 2) << words.back() << ": " << r.err;
        EXPECT_EQ(r.out, "");
        EXPECT_TRUE(contains(r.err, "car-set: ")) << r.err;
    }
    EXPECT_EQ(tb::readFile(s.style), style);
    EXPECT_EQ(tb::readFile(s.dir / "ENGLISH.FXT"), fxt);
    EXPECT_FALSE(std::filesystem::exists(s.style + ".bak"));

    auto missing = s.run({"car-set", s.style, "1", "width=3"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(tb::readFile(s.style), style);
}

TEST(CarCli, CentreOfMassRoundTripsAsTheSignedOffsetTheGameReads) {
    Sample s;
    const std::size_t k = s.carWithDoors();
    const std::string asn = std::to_string(s.asnOf(k));
    auto set = s.run({"car-set", s.style, asn, "cy=-6", "cx=-128"});
    ASSERT_EQ(set.status, 0) << set.err;
    EXPECT_TRUE(contains(set.out, "cy: " + std::to_string(s.layout.cars[k].cy) + " -> -6\n"));
    // The stored bytes: two's complement, as the game reads them.
    const auto bytes = tb::readFile(s.style);
    EXPECT_EQ(bytes[s.offsets.carRecords[k] + 118], 0x80);
    EXPECT_EQ(bytes[s.offsets.carRecords[k] + 119], 0xFA);

    auto text = s.run({"cars", s.style});
    ASSERT_EQ(text.status, 0) << text.err;
    EXPECT_TRUE(contains(text.out, "asn=" + asn + "\n")) << text.out;
    EXPECT_TRUE(contains(text.out, "cx=-128\ncy=-6\n"));
    auto json = s.run({"cars", s.style, "--format", "json"});
    ASSERT_EQ(json.status, 0) << json.err;
    bool found = false;
    for (const auto& car : nlohmann::json::parse(json.out))
        if (car["asn"] == s.asnOf(k)) {
            found = true;
            EXPECT_EQ(car["cx"], -128);
            EXPECT_EQ(car["cy"], -6);
        }
    EXPECT_TRUE(found);
    // The record dump prints the stored bytes as it always has.
    auto dump = s.run({"car", s.style, asn});
    EXPECT_TRUE(contains(dump.out, " cx,cy:128,250\n")) << dump.out;

    // Inside the editor's limits but not in a byte: refused, never wrapped, nothing written.
    auto wide = s.run({"car-set", s.style, asn, "cy=250"});
    EXPECT_EQ(wide.status, 2);
    EXPECT_TRUE(contains(wide.err, "car-set: cy=250 refused: the game reads cy as one signed "
                                   "byte (-128 to 127): 250 would be read as -6; nothing written"))
        << wide.err;
    EXPECT_EQ(tb::readFile(s.style), bytes);
    // Past the limit: set to the limit, as the editor does, and that is refused the same way.
    auto past = s.run({"car-set", s.style, asn, "cx=-300"});
    EXPECT_EQ(past.status, 2);
    EXPECT_TRUE(contains(past.err, "txtbox valve set to L val (-255)")) << past.err;
    EXPECT_TRUE(contains(past.err, "-255 would be read as 1")) << past.err;
    EXPECT_EQ(tb::readFile(s.style), bytes);
}

TEST(CarCli, CarSetRenamesThroughEnglishFxt) {
    Sample s;
    const std::size_t k = s.carWithDoors();
    const int model = s.layout.cars[k].model;
    const auto style = tb::readFile(s.style);
    auto r = s.run({"car-set", s.style, std::to_string(s.asnOf(k)), "name=Zoomer"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(contains(r.out, " -> Zoomer\n"));
    EXPECT_TRUE(contains(r.err, "message: Note: Car name changes are not accepted by KRB"));
    EXPECT_EQ(tb::readFile(s.style), style); // a name alone leaves the style file alone
    const auto entries = tb::decodeFxt(tb::readFile(s.dir / "ENGLISH.FXT"));
    const std::string key = "[car" + std::to_string(model) + "]";
    EXPECT_NE(std::find(entries.begin(), entries.end(), key + "Zoomer"), entries.end());

    auto same = s.run({"car-set", s.style, std::to_string(s.asnOf(k)), "name=Zoomer"});
    EXPECT_EQ(same.status, 0);
    EXPECT_EQ(same.out, "nothing changed\n");
}

TEST(CarCli, CarSetRefusesANameThatEnglishFxtHasNoPlaceFor) {
    Sample s;
    const std::size_t k = s.carWithDoors();
    const int model = s.layout.cars[k].model;
    const std::string asn = std::to_string(s.asnOf(k));
    const auto style = tb::readFile(s.style);

    // A text without the model's entry: the name would be dropped by the save.
    const auto withoutModel =
        tb::encodeFxt({"[1001]Another day", "[car" + std::to_string(model == 3 ? 4 : 3) + "]Bike"});
    tb::writeFile(s.dir / "ENGLISH.FXT", withoutModel);
    auto noEntry = s.run({"car-set", s.style, asn, "name=Zed"});
    EXPECT_EQ(noEntry.status, 1);
    EXPECT_TRUE(contains(noEntry.err, "ENGLISH.FXT has no entry for model " +
                                          std::to_string(model) + "; its name cannot be saved"))
        << noEntry.err;
    EXPECT_EQ(tb::readFile(s.dir / "ENGLISH.FXT"), withoutModel);

    // An empty file is warned about at load and never rewritten.
    tb::writeFile(s.dir / "ENGLISH.FXT", std::vector<std::uint8_t>{});
    auto empty = s.run({"car-set", s.style, asn, "name=Zed"});
    EXPECT_EQ(empty.status, 1);
    EXPECT_TRUE(contains(empty.err, "holds no car names (empty or damaged)")) << empty.err;
    EXPECT_TRUE(contains(empty.err, "names cannot be saved")) << empty.err;
    EXPECT_FALSE(contains(empty.out, "-> Zed"));
    EXPECT_TRUE(tb::readFile(s.dir / "ENGLISH.FXT").empty());
    EXPECT_EQ(tb::readFile(s.style), style);
}

TEST(CarCli, FxtCommandsDecodeAndEncode) {
    tb::TempDir dir;
    const std::vector<std::string> entries = {"[1001]Another day", "[car3]Bike \xC0"};
    tb::writeFile(dir / "ENGLISH.FXT", tb::encodeFxt(entries));
    const std::string fxt = (dir / "ENGLISH.FXT").string(), txt = (dir / "out.txt").string();
    ASSERT_EQ(runCli({"fxt2txt", fxt, txt}).status, 0);
    ASSERT_EQ(runCli({"txt2fxt", txt, fxt}).status, 0);
    EXPECT_EQ(tb::decodeFxt(tb::readFile(fxt)),
              (std::vector<std::string>{entries[0], entries[1], "[]\x19", "[]"}));
    auto missing = runCli({"fxt2txt", (dir / "NONE.FXT").string(), txt});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err, "message: Unable to open :" + (dir / "NONE.FXT").string() + "\n");
}
