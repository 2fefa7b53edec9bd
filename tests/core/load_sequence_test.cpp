#include "base/binary_file.h"
#include "base/cause_advice.h"
#include "fake_platform.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/session_io.h"
#include "session/style_session.h"
#include "style/style_header.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <optional>

#ifndef _WIN32
#include <unistd.h>
#endif

using namespace torquil;
namespace tb = torquil::testing;

namespace {

// Loaders that only record the order they ran in, and fail where told.
struct RecordingLoaders {
    std::vector<std::string> ran;
    std::string failAt;
    bool raiseAt = false;

    SectionLoader make(const std::string& name) {
        return [this, name](StyleSession& s, BinaryFile&, Platform&) {
            ran.push_back(name);
            if (raiseAt && name == failAt) s.errors.raise(err::SubscriptOutOfRange, name);
            return name != failAt;
        };
    }
    LoaderSet set() {
        LoaderSet l;
        l.carNames = make("names");
        l.palette24 = make("pal24");
        l.palette8 = make("pal8");
        l.spriteInfo = make("sprites");
        l.spriteNumbers = make("numbers");
        l.carInfo = make("cars");
        l.deltas = make("deltas");
        l.tileRegions = make("tiles");
        return l;
    }
};

struct LoadFixture : ::testing::Test {
    tb::TempDir dir;
    tb::FakePlatform platform;
    RecordingLoaders recording;
    std::unique_ptr<StyleSession> session;

    std::filesystem::path writeStyle(const std::string& name, const tb::StyleSpec& layout) {
        auto path = dir / name;
        tb::writeFile(path, tb::buildStyle(layout));
        return path;
    }
    LoadOutcome load(const std::filesystem::path& path, int option = kLoadSprites,
                     bool debug = false) {
        AppOptions options;
        options.debugMode = debug;
        options.workDir = dir.path();
        session = std::make_unique<StyleSession>(options);
        prepareStyle(session->style, path, option);
        return initHeader(*session, platform, recording.set());
    }
};

// Why a load failed; a load that opened the file fails the test.
std::optional<LoadProblem> loadProblemOf(const LoadOutcome& outcome) {
    EXPECT_FALSE(outcome) << "the file was opened";
    if (outcome) return std::nullopt;
    return outcome.error().problem;
}

tb::StyleSpec smallSpec(bool is24) {
    tb::StyleSpec layout;
    layout.is24 = is24;
    tb::SpriteSpec sprite;
    sprite.w = 8;
    sprite.h = 8;
    sprite.pixels.assign(64, 3);
    layout.sprites.push_back(sprite);
    tb::sortAndCountSprites(layout);
    return layout;
}

} // namespace

TEST_F(LoadFixture, MissingFileSaysSoAndLoadsNothing) {
    auto path = dir / "STYLE001.G24";
    const LoadOutcome outcome = load(path);
    EXPECT_EQ(loadProblemOf(outcome), LoadProblem::FileMissing);
    ASSERT_EQ(platform.shownMessages.size(), 1u);
    EXPECT_EQ(platform.shownMessages[0].text,
              "Error: " + path.string() + " file error or not found.");
    EXPECT_EQ(outcome.message(), platform.shownMessages[0].text); // the failure carries it too
    EXPECT_TRUE(recording.ran.empty());
    EXPECT_TRUE(platform.detailLines.empty());
}

TEST_F(LoadFixture, G24HeaderLinesLoaderOrderAndCaption) {
    auto layout = smallSpec(true);
    auto path = writeStyle("STYLE001.G24", layout);
    auto offsets = tb::sectionOffsets(layout);
    ASSERT_TRUE(load(path));
    EXPECT_EQ(recording.ran,
              (std::vector<std::string>{"names", "pal24", "sprites", "numbers", "cars", "deltas"}));
    const auto& d = platform.detailLines;
    ASSERT_GE(d.size(), 18u);
    EXPECT_EQ(d[0], "version_code:336");
    EXPECT_EQ(d[1], "LOF:" + std::to_string(offsets.fileLength));
    EXPECT_EQ(d[2], "head_size:64");
    EXPECT_EQ(d[3], "side_size:" + std::to_string(4 * 4096));
    EXPECT_EQ(d[7].rfind("clut_size:", 0), 0u);
    EXPECT_EQ(d[12].rfind("palette_index_size:", 0), 0u);
    EXPECT_EQ(d[17], "sprite_numbers_size:42");
    EXPECT_EQ(session->caption, "Torquil: STYLE001.G24 (Port Alder 24bit) [Sprites]");
    EXPECT_EQ(session->style.gSeekGraphicsStart,
              static_cast<std::int64_t>(offsets.spriteGraphics.offset) + 1);
    EXPECT_EQ(session->style.gSeekCarInfo, static_cast<std::int64_t>(offsets.carInfo.offset) + 1);
    EXPECT_EQ(session->style.gSeekSpriteInfo,
              static_cast<std::int64_t>(offsets.spriteInfo.offset) + 1);
    EXPECT_TRUE(session->style.loaded);
}

TEST_F(LoadFixture, GryRunsTheEightBitPaletteAfterTheSpriteInfo) {
    auto path = writeStyle("style002.gry", smallSpec(false));
    ASSERT_TRUE(load(path));
    EXPECT_EQ(recording.ran,
              (std::vector<std::string>{"names", "sprites", "pal8", "numbers", "cars", "deltas"}));
    EXPECT_EQ(platform.detailLines[2], "head_size:52");
    EXPECT_EQ(platform.detailLines[7], "palette_size:768");
    EXPECT_EQ(session->caption, "Torquil: STYLE002.GRY (Sierra Bay 8bit) [Sprites]");
}

TEST_F(LoadFixture, TilesOptionRunsOnlyThePaletteAndTileRegions) {
    auto path = writeStyle("STYLE003.G24", smallSpec(true));
    ASSERT_TRUE(load(path, kLoadTiles));
    EXPECT_EQ(recording.ran, (std::vector<std::string>{"pal24", "tiles"}));
    EXPECT_EQ(session->style.gSeekCarInfo, 0);
    EXPECT_EQ(session->style.gSeekGraphicsStart, 65);
    EXPECT_EQ(session->caption, "Torquil: STYLE003.G24 (Palm Reach 24bit) [Tiles]");
}

TEST_F(LoadFixture, UnknownLoadOptionRunsNoLoaderAndFailsAtThePages) {
    auto path = writeStyle("STYLE001.G24", smallSpec(true));
    // No section was located, so the page area starts at position 0: a bad record number.
    EXPECT_EQ(loadProblemOf(load(path, 7)), LoadProblem::Failed);
    EXPECT_TRUE(recording.ran.empty());
    EXPECT_EQ(platform.shownMessages.at(0).text, "Unknown Load Option:7");
    EXPECT_EQ(platform.shownMessages.at(1).text.substr(0, 18), "ERROR: Init Header");
}

TEST_F(LoadFixture, FailingLoaderEndsTheLoadWithTheCompositeMessage) {
    auto path = writeStyle("STYLE001.G24", smallSpec(true));
    recording.failAt = "sprites";
    EXPECT_EQ(loadProblemOf(load(path)), LoadProblem::Failed);
    EXPECT_EQ(recording.ran, (std::vector<std::string>{"names", "pal24", "sprites"}));
    ASSERT_EQ(platform.shownMessages.size(), 1u);
    EXPECT_EQ(platform.shownMessages[0].text,
              "ERROR: Load Sprite Info\rThere was a problem during the loading of the KRB STYLE "
              "file.\rPlease check that you are not editing the file while KRB is trying to use "
              "it!\rThe file may have become corrupt, you may have to reinstall the " +
                  path.string() + " from the KRB CD.");
    EXPECT_FALSE(session->style.loaded);
    EXPECT_FALSE(session->selection.any());
}

TEST_F(LoadFixture, PendingErrorAfterThePagesFailsTheLoad) {
    auto path = writeStyle("STYLE001.G24", smallSpec(true));
    recording.failAt = "deltas";
    recording.raiseAt = true;
    // The deltas loader both fails and leaves an error: the failure names its step.
    EXPECT_EQ(loadProblemOf(load(path)), LoadProblem::Failed);
    EXPECT_EQ(platform.shownMessages.at(0).text.substr(0, 18), "ERROR: Load Deltas");
}

TEST_F(LoadFixture, DebugModeLetsTheErrorStopTheLoad) {
    auto path = writeStyle("STYLE001.G24", smallSpec(true));
    recording.failAt = "numbers";
    recording.raiseAt = true;
    EXPECT_THROW(load(path, kLoadSprites, true), RuntimeError);
}

TEST_F(LoadFixture, FilesShorterThanTheirHeaderOrWithLyingSizesNeverCrash) {
    auto bytes = tb::buildStyle(smallSpec(true));
    for (std::size_t cut : {std::size_t{0}, std::size_t{10}, std::size_t{63}, std::size_t{64},
                            std::size_t{5000}, bytes.size() - 1}) {
        auto copy = bytes;
        tb::truncate(copy, cut);
        tb::writeFile(dir / "STYLE001.G24", copy);
        platform.shownMessages.clear();
        const LoadOutcome outcome = load(dir / "STYLE001.G24");
        EXPECT_TRUE(outcome || outcome.error().problem != LoadProblem::FileMissing) << cut;
    }
    auto lying = bytes;
    tb::setHeaderField(lying, tb::header24::sprite_graphics_size, 0x7FFFFFFF);
    tb::setHeaderField(lying, tb::header24::car_info_size, -5);
    tb::writeFile(dir / "STYLE001.G24", lying);
    platform.shownMessages.clear();
    // The page area would start before the file's first byte: a run-time error, not a crash.
    EXPECT_EQ(loadProblemOf(load(dir / "STYLE001.G24")), LoadProblem::Failed);
    EXPECT_EQ(platform.shownMessages.at(0).text.substr(0, 20), "ERROR: Load Deltas\rT");
}

TEST_F(LoadFixture, TextFileRenamedToStyleGivesAMessageNotACrash) {
    std::string text = "This is not a style file, just some words.\n";
    tb::writeFile(dir / "STYLE001.G24", std::vector<std::uint8_t>(text.begin(), text.end()));
    // The header's last fields lie past the 44 bytes and read as zeros: the page area starts
    // just past the end of the file.
    (void)load(dir / "STYLE001.G24"); // the recording loaders let it open: the message is the point
    ASSERT_FALSE(platform.shownMessages.empty());
    EXPECT_EQ(platform.shownMessages[0].text,
              "Tried to loadBlock 0 which is past the end of the file!");
}

TEST_F(LoadFixture, AFileThatIsNoStyleFileSaysSoUnderTheFailureMessage) {
    // A text file named like a style file: its "sizes" are letters, far more than its length.
    auto path = dir / "STYLE001.G24";
    tb::writeFile(path, std::vector<std::uint8_t>(300, 'x'));
    recording.failAt = "pal24";
    EXPECT_EQ(loadProblemOf(load(path)), LoadProblem::Failed);
    ASSERT_EQ(platform.shownMessages.size(), 1u);
    const std::string expected = loadFailureMessage("Load 24bit Palette", path) + "\r" +
                                 "STYLE001.G24 is not a style file: its header does not describe "
                                 "a file of this length.";
    EXPECT_EQ(platform.shownMessages[0].text, expected);
}

TEST_F(LoadFixture, AStyleFileThatFailsLaterKeepsTheMessageAlone) {
    auto path = writeStyle("STYLE001.G24", smallSpec(true));
    recording.failAt = "cars";
    EXPECT_EQ(loadProblemOf(load(path)), LoadProblem::Failed);
    EXPECT_EQ(platform.shownMessages.at(0).text, loadFailureMessage("Load Car Info", path));
}

TEST(HeaderFitsFile, SizesMustBePositiveAndFitTheLength) {
    const tb::StyleSpec layout = smallSpec(true);
    const std::vector<std::uint8_t> bytes = tb::buildStyle(layout);
    StyleHeader header = parseStyleHeader(bytes.data(), true);
    const auto length = static_cast<std::int64_t>(bytes.size());
    EXPECT_TRUE(headerFitsFile(header, length));
    EXPECT_FALSE(headerFitsFile(header, header.sprite_graphics_size())); // no room for the rest
    EXPECT_TRUE(headerFitsFile(parseStyleHeader(tb::buildStyle(smallSpec(false)).data(), false),
                               static_cast<std::int64_t>(tb::buildStyle(smallSpec(false)).size())));
    header.g24.object_info_size = -4;
    EXPECT_FALSE(headerFitsFile(header, length));
    EXPECT_FALSE(headerFitsFile(StyleHeader{}, 10)); // shorter than a header
}

TEST_F(LoadFixture, AFileThisUserMayNotReadSaysSoAfterTheLoadMessage) {
#ifndef _WIN32
    if (::geteuid() == 0) GTEST_SKIP() << "root reads a file without read permission";
#else
    GTEST_SKIP() << "Windows files have no mode bits";
#endif
    auto path = writeStyle("STYLE001.G24", smallSpec(true));
    std::filesystem::permissions(path, std::filesystem::perms::none);
    const LoadOutcome outcome = load(path);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    EXPECT_EQ(loadProblemOf(outcome), LoadProblem::Failed);
    ASSERT_EQ(platform.shownMessages.size(), 1u);
    // The specified lines first, then the cause and what to do.
    const std::string& text = platform.shownMessages[0].text;
    EXPECT_EQ(text.rfind("ERROR: ", 0), 0u);
    EXPECT_NE(text.find(" from the KRB CD.\rThe system said: permission denied.\r" +
                        causeAdvice("permission denied", Access::Reading)),
              std::string::npos)
        << text;
}
