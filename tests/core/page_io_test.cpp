#include "base/binary_file.h"
#include "fake_platform.h"
#include "session/session_io.h"
#include "style/page_io.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

using namespace torquil;
using torquil::testing::FakePlatform;
using torquil::testing::TempDir;

namespace {

// A file of `prefix` bytes, then the page area (byte value = page number * 16 + row % 16),
// then `suffix` bytes of 0xEE.
std::vector<std::uint8_t> pageFile(int prefix, std::int64_t areaBytes, int suffix) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(prefix), 0x11);
    for (std::int64_t i = 0; i < areaBytes; ++i) {
        int page = static_cast<int>(i / kPageBytes), row = static_cast<int>(i % kPageBytes / 256);
        bytes.push_back(static_cast<std::uint8_t>(page * 16 + row % 16 + i % 3));
    }
    bytes.insert(bytes.end(), static_cast<std::size_t>(suffix), 0xEE);
    return bytes;
}

struct PageFixture : ::testing::Test {
    TempDir dir;
    FakePlatform platform;
    StyleSession session;
    BackgroundPainter painter{kDarkGrey};

    void prepare(int prefix, std::int64_t areaBytes, int suffix, int highestPage) {
        torquil::testing::writeFile(dir / "STYLE001.G24", pageFile(prefix, areaBytes, suffix));
        session.style.path = dir / "STYLE001.G24";
        session.style.gSeekGraphicsStart = prefix + 1;
        session.style.gSeekGraphicsEnd = prefix + 1 + areaBytes;
        session.pages.highestPage = highestPage;
    }
    void load() {
        BinaryFile file(session.errors);
        ASSERT_TRUE(file.open(session.style.path, BinaryFile::Mode::Read));
        loadBlocks(session, file, platform, painter);
    }
    int save() {
        BinaryFile file(session.errors);
        EXPECT_TRUE(file.open(session.style.path, BinaryFile::Mode::ReadWrite));
        return savePages(session, file, platform);
    }
};

} // namespace

TEST_F(PageFixture, PageAndAHalfReadsTheRowThatStartsExactlyAtTheEnd) {
    prepare(100, kPageBytes + kPageBytes / 2, 42, 1);
    load();
    EXPECT_EQ(session.pages.gNumBlockLoaded, 1);
    EXPECT_EQ(session.pages.gNumLinesLoaded, 256 + 129);
    // The 129th row of page 1 lies past the page area: it holds the following bytes.
    EXPECT_EQ(session.pages.pixel(1, 0, 128), 0xEE);
    const auto& lines = platform.detailLines;
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], "LoadBlocks final seek:" + std::to_string(101 + 65536 + 129 * 256));
    EXPECT_EQ(lines[1], "gSeekGraphicsEnd:" + std::to_string(101 + 65536 + 32768));
    EXPECT_EQ(lines[2], "gNumBlockLoaded:1");
    EXPECT_EQ(lines[3], "gNumLinesLoaded:385");
    EXPECT_EQ(platform.progressTitles.front(), "Load Page 0");
    EXPECT_EQ(platform.progressTexts.back(), "Loading Graphics Page 1...");
    EXPECT_EQ(session.image.at(300, 5), kDarkGrey);
}

TEST_F(PageFixture, SaveWritesBackExactlyTheRowsRead) {
    prepare(100, kPageBytes + kPageBytes / 2, 300, 1);
    const auto before = torquil::testing::readFile(session.style.path);
    load();
    session.pages.pixel(0, 3, 4) ^= 0xFF;
    session.pages.pixel(1, 0, 127) = 0x5A;
    session.style.gPagesChanged = true;
    platform.detailLines.clear();
    EXPECT_EQ(save(), 0);
    EXPECT_FALSE(session.style.gPagesChanged);
    auto after = torquil::testing::readFile(session.style.path);
    ASSERT_EQ(after.size(), before.size());
    std::size_t p0 = 100 + 4 * 256 + 3, p1 = 100 + 65536 + 127 * 256;
    EXPECT_EQ(after[p0], before[p0] ^ 0xFF);
    EXPECT_EQ(after[p1], 0x5A);
    after[p0] = before[p0];
    after[p1] = before[p1];
    EXPECT_EQ(after, before) << "nothing else changes";
    EXPECT_EQ(platform.detailLines[0], "Lines Saved by blocks:256");
    EXPECT_EQ(platform.detailLines[1], "Lines Saved total:385");
    EXPECT_EQ(platform.progressTitles.back(), "Saving");
}

TEST_F(PageFixture, StopDuringPageThreeKeepsItsRowsForTheSave) {
    prepare(0, 5 * kPageBytes, 42, 4);
    // Each row lets events run once; stop on the 10th row of page 3.
    platform.stopAfterEvents = 3 * (256 + 1) + 10;
    load();
    EXPECT_EQ(session.pages.gNumBlockLoaded, 2);
    EXPECT_EQ(session.pages.gNumLinesLoaded, 3 * 256 + 10);
    const auto before = torquil::testing::readFile(session.style.path);
    EXPECT_EQ(save(), 0);
    EXPECT_EQ(torquil::testing::readFile(session.style.path), before);
    EXPECT_EQ(platform.detailLines.back(),
              "gSeekGraphicsEnd:" + std::to_string(1 + 5 * kPageBytes));
    EXPECT_NE(std::find(platform.detailLines.begin(), platform.detailLines.end(),
                        "Lines Saved total:778"),
              platform.detailLines.end());
}

TEST_F(PageFixture, AtMostTwentySixPagesAreLoaded) {
    prepare(0, 27 * std::int64_t{kPageBytes}, 42, 30);
    load();
    EXPECT_EQ(session.pages.gNumBlockLoaded, 25);
    EXPECT_EQ(session.pages.gNumLinesLoaded, 26 * 256);
}

TEST_F(PageFixture, PageStartPastTheEndOfTheFileStopsTheLoad) {
    prepare(0, kPageBytes, 0, 3);
    session.selection = {1, 1};
    load();
    ASSERT_EQ(platform.shownMessages.size(), 1u);
    EXPECT_EQ(platform.shownMessages[0].text,
              "Tried to loadBlock 1 which is past the end of the file!");
    EXPECT_FALSE(session.selection.any());
    EXPECT_EQ(session.pages.gNumBlockLoaded, -1) << "not updated";
    EXPECT_EQ(session.pages.gNumLinesLoaded, 256);
}
