#include "base/binary_file.h"
#include "cars/car_names_io.h"
#include "fake_platform.h"
#include "sample_level.h"
#include "session/edits.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/session_io.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

// A style folder with the FXT file given (none when empty) and a separate work folder.
struct NamesFixture {
    tb::TempDir data, work;
    StyleSession s;
    tb::FakePlatform p;

    explicit NamesFixture(const std::vector<std::string>& entries,
                          const std::string& fxtName = "ENGLISH.FXT")
        : s(AppOptions{false, {}, {}}) {
        s.options.workDir = work.path();
        s.style.path = data / "STYLE001.G24";
        if (!entries.empty()) tb::writeFile(data / fxtName, tb::encodeFxt(entries));
    }
    bool load() {
        BinaryFile unused(s.errors);
        return loadCarNames(s, unused, p);
    }
};

const std::vector<std::string> kEntries = {"[1001]Another day in Port Alder.",
                                           "[car1]Bug",
                                           "[car12]Tram",
                                           "[car5]Ambulance",
                                           "[2001]WASTED",
                                           "[car12]Tram again",
                                           "[car1x]Strange",
                                           "[]"};

} // namespace

TEST(CarNamesLoad, NamesComeFromTheFxtFoundIgnoringCase) {
    NamesFixture f(kEntries, "english.fxt");
    EXPECT_TRUE(f.load());
    EXPECT_TRUE(f.s.names.fromFxt);
    EXPECT_EQ(f.s.names.names[1], "Strange"); // the later "[car1x]" entry takes model 1 over
    EXPECT_EQ(f.s.names.keys[1], "[car1x]");
    EXPECT_EQ(f.s.names.names[12], "Tram again");
    EXPECT_EQ(f.s.names.names[5], "Ambulance");
    EXPECT_EQ(f.s.names.names[0], "");
    // The decoded text stays in memory: no temporary file another run could share.
    EXPECT_FALSE(f.s.names.decodedText.empty());
    EXPECT_TRUE(std::filesystem::is_empty(f.work.path()));
    EXPECT_TRUE(f.p.shownMessages.empty());
}

TEST(CarNamesLoad, WithoutTheFxtTheBuiltInNamesAndAWarning) {
    NamesFixture f({});
    EXPECT_TRUE(f.load());
    EXPECT_FALSE(f.s.names.fromFxt);
    EXPECT_EQ(f.p.messageTexts(),
              std::vector<std::string>{
                  "Warning: ENGLISH.FXT was not with the style file in the\r" +
                  f.data.path().string() +
                  " directory.\rYou will not be able to load or save the real car names. "
                  "(defaults names used)"});
    EXPECT_EQ(f.s.names.names[77], "F - 19");
    // Without a decoded ENGLISH.FXT the names cannot be saved.
    EXPECT_FALSE(saveCarNames(f.s, f.p));
    EXPECT_FALSE(std::filesystem::exists(f.data / "ENGLISH.FXT"));
}

TEST(CarNamesLoad, BuiltInTableHasItsSixtySevenNamesAndNoKeys) {
    CarNames names;
    names.names[15] = "stale";
    fillBuiltInNames(names);
    int named = 0;
    for (const auto& n : names.names) named += !n.empty();
    EXPECT_EQ(named, 67);
    EXPECT_EQ(names.keys, CarNames{}.keys);
    const std::pair<int, const char*> spots[] = {
        {0, "Beast GTS"},   {8, "Juggernaut"}, {19, "4 X 4"},
        {33, "Juggernaut"}, {53, "Beast GTS"}, {81, "29 Special"},
        {88, "Helicopter"}, {15, ""},          {90, ""}};
    for (auto [index, name] : spots) EXPECT_EQ(names.names[index], name) << index;
}

TEST(CarNamesSave, RenamingChangesOnlyThatEntryAndSavingAgainGivesTheSameBytes) {
    NamesFixture f(kEntries);
    ASSERT_TRUE(f.load());
    ASSERT_TRUE(renameCarModel(f.s, 12, "Streetcar"));
    EXPECT_TRUE(f.s.style.gCarNamesChanged);
    ASSERT_TRUE(saveCarNames(f.s, f.p));
    EXPECT_EQ(f.p.messageTexts(),
              std::vector<std::string>{
                  "Note: Car name changes are not accepted by KRB until it is restarted."});
    // Both "[car12]" lines take the table's name. Model 1's key is now "[car1x]", which
    // "[car1]Bug" does not begin with (keys end with their bracket): that line stays as it was.
    const std::vector<std::string> expected = {"[1001]Another day in Port Alder.",
                                               "[car1]Bug",
                                               "[car12]Streetcar",
                                               "[car5]Ambulance",
                                               "[2001]WASTED",
                                               "[car12]Streetcar",
                                               "[car1x]Strange",
                                               "[]\x19",
                                               "[]"};
    const auto first = tb::readFile(f.data / "ENGLISH.FXT");
    EXPECT_EQ(tb::decodeFxt(first), expected);

    // A fresh load of the saved file and a save without a change: the same bytes.
    NamesFixture again({});
    tb::writeFile(again.data / "ENGLISH.FXT", first);
    ASSERT_TRUE(again.load());
    ASSERT_TRUE(saveCarNames(again.s, again.p));
    EXPECT_EQ(tb::readFile(again.data / "ENGLISH.FXT"), first);
}

TEST(CarNamesSave, FirstMatchingKeyFromIndexZeroWinsAndKeylessLinesAreDropped) {
    NamesFixture f({"[1001]Another day", "[car12]Twelve", "[car1]One", "[car2]Two", "[x]", "abc",
                    "no brackets", "only [ open", "close ] only", "[y]ok"});
    ASSERT_TRUE(f.load());
    // Model 0 is given the key "[car1" (no bracket), which both "[car12]" and "[car1]" lines
    // begin with, so it wins over their own keys; model 2's key is too short to match anything.
    f.s.names.keys[0] = "[car1";
    f.s.names.names[0] = "Zero";
    f.s.names.keys[2] = "[c";
    ASSERT_TRUE(saveCarNames(f.s, f.p));
    EXPECT_EQ(tb::decodeFxt(tb::readFile(f.data / "ENGLISH.FXT")),
              (std::vector<std::string>{"[1001]Another day", "[car1Zero", "[car1Zero", "[car2]Two",
                                        "[y]ok", "[]\x19", "[]"}));
    EXPECT_TRUE(std::filesystem::is_empty(f.work.path()));
}

TEST(CarNamesSave, NamesNotLoadedFromTheFxtStopTheSave) {
    NamesFixture f(kEntries);
    ASSERT_TRUE(f.load());
    const auto before = tb::readFile(f.data / "ENGLISH.FXT");
    f.s.names.fromFxt = false; // as when the FXT appeared only after the load
    EXPECT_FALSE(saveCarNames(f.s, f.p));
    EXPECT_EQ(f.p.messageTexts(),
              std::vector<std::string>{"Unable to reload:" + (f.data / "ENGLISH.FXT").string() +
                                       "\rCan't save Car Names without it!"});
    EXPECT_EQ(tb::readFile(f.data / "ENGLISH.FXT"), before);
}

TEST(CarNamesSave, SampleLevelKeepsItsEscapedNamesThroughARename) {
    tb::TempDir dir, work;
    tb::writeSampleLevel(dir.path());
    StyleSession s(AppOptions{false, work.path(), {}});
    tb::FakePlatform p;
    prepareStyle(s.style, dir / "STYLE001.G24", kLoadSprites);
    ASSERT_TRUE(initHeader(s, p, standardLoaders())) << s.stepText;
    EXPECT_EQ(s.names.names[43], "City Bus");
    ASSERT_TRUE(renameCarModel(s, 43, "Caf\xE9 Bus"));
    // Every loaded car of model 43 shows the new name.
    int renamed = 0;
    for (const CarEntry& car : s.cars.slots)
        if (car.inUse && car.info.model == 43) renamed += car.name == "Caf\xE9 Bus";
    EXPECT_GT(renamed, 0);
    ASSERT_TRUE(saveCarNames(s, p));

    auto expected = tb::sampleFxtEntries();
    expected.pop_back(); // the game's own "[]" is too short to be kept
    for (auto& e : expected)
        if (e == "[car43]City Bus") e = "[car43]Caf\xE9 Bus";
    expected.push_back("[]\x19");
    expected.push_back("[]");
    EXPECT_EQ(tb::decodeFxt(tb::readFile(dir / "ENGLISH.FXT")), expected);
    const CarNameVerdict outside = renameCarModel(s, 91, "X");
    ASSERT_FALSE(outside);
    EXPECT_EQ(outside.error().check, CarNameCheck::NoPlace);
}
