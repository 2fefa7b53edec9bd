#include "base/binary_file.h"
#include "exchange/delta_io.h"
#include "fake_platform.h"
#include "session/load_sequence.h"
#include "session/session_io.h"
#include "sprite_fixture.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <functional>

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

tb::DeltaSpec runs(std::vector<tb::DeltaRun> list) {
    tb::DeltaSpec d;
    d.runs = std::move(list);
    return d;
}

// Three car sprites: the first with two deltas, the second with none, the third with one.
tb::StyleSpec deltaSpec(bool is24) {
    tb::StyleSpec layout;
    layout.is24 = is24;
    tb::SpriteSpec a;
    a.w = a.h = 16;
    a.pixels.assign(256, 5);
    a.deltas = {runs({{517, {1, 2, 3}}, {250, {4}}}), runs({{2, {9, 9}}})};
    tb::SpriteSpec b = a;
    b.x = 16;
    b.deltas.clear();
    tb::SpriteSpec c = a;
    c.x = 32;
    c.deltas = {runs({{300, {7, 7, 7, 7}}})};
    layout.sprites = {a, b, c};
    tb::sortAndCountSprites(layout);
    return layout;
}

// A delta's runs as (offset, length, data), to compare whole.
using RunAt = std::tuple<int, int, std::vector<std::uint8_t>>;
std::vector<RunAt> runsOf(const DeltaRec& d) {
    std::vector<RunAt> out;
    for (const RunLine& r : d.runLine) out.emplace_back(r.offset, r.length, r.data);
    return out;
}

// Opens a builder-made style with the delta table filled the way the sprite info loader fills
// it (size, ptr and the 1-based position of each entry), so the delta code is tested alone.
struct DeltaFixture : ::testing::Test {
    tb::OpenStyle style;
    tb::FakePlatform& platform = style.platform;
    std::unique_ptr<StyleSession>& session = style.session;
    const tb::TempDir& dir = style.dir;
    tb::SectionOffsets offsets;
    std::vector<std::uint8_t> bytes;
    fs::path path;
    DumpFlags dumps;

    void build(const tb::StyleSpec& layout,
               const std::function<void(std::vector<std::uint8_t>&)>& edit = {}) {
        path = dir / (layout.is24 ? "STYLE001.G24" : "STYLE001.GRY");
        offsets = tb::sectionOffsets(layout);
        bytes = tb::buildStyle(layout);
        if (edit) edit(bytes);
        tb::writeFile(path, bytes);
    }

    bool load() {
        style.open(path.filename().string(), bytes, kLoadSprites, false, dumps);
        DeltaTable& table = session->deltas;
        const std::size_t n = offsets.deltaEntries.size();
        table.myDeltas.assign(std::max<std::size_t>(n, 1), DeltaRec{});
        table.deltaCount = static_cast<std::int32_t>(n);
        for (std::size_t i = 0; i < n; ++i) {
            table.myDeltas[i].entryPos = static_cast<std::int32_t>(offsets.deltaEntries[i] + 1);
            table.myDeltas[i].size = tb::getI16(bytes, offsets.deltaEntries[i]);
            table.myDeltas[i].ptr = tb::getI32(bytes, offsets.deltaEntries[i] + 2);
        }
        // Somewhere else in the file, as the car info loader leaves it.
        style.file->seek(1);
        return loadDeltas(*session, *style.file, platform);
    }

    int save() {
        BinaryFile file(session->errors);
        file.open(path, BinaryFile::Mode::ReadWrite);
        return saveDeltas(*session, file, platform);
    }

    const DeltaRec& delta(int i) const { return session->deltas.myDeltas.at(i); }
};

struct DeltaBothKinds : DeltaFixture, ::testing::WithParamInterface<bool> {};

} // namespace

// ---------------------------------------------------------------- loading

TEST_P(DeltaBothKinds, LoadsEveryRunOfEveryDelta) {
    build(deltaSpec(GetParam()));
    ASSERT_TRUE(load());
    EXPECT_TRUE(platform.shownMessages.empty());
    EXPECT_EQ(platform.progressTitles.front(), "Load Delta Graphics");
    EXPECT_EQ(platform.progressTexts.front(), "Loading Delta Graphics and Data...");

    // 517: row 2, column 5.
    EXPECT_EQ(runsOf(delta(0)), (std::vector<RunAt>{{517, 3, {1, 2, 3}}, {250, 1, {4}}}));
    EXPECT_EQ(runsOf(delta(1)), (std::vector<RunAt>{{2, 2, {9, 9}}}));
    EXPECT_EQ(runsOf(delta(2)), (std::vector<RunAt>{{300, 4, {7, 7, 7, 7}}}));

    // The store begins after the one page: delta 0's ptr counts from the first byte of page 0.
    EXPECT_EQ(delta(0).ptr, 65536);
    EXPECT_EQ(session->deltas.deltaStart, static_cast<std::int64_t>(offsets.deltaStore.offset) + 1);
}

INSTANTIATE_TEST_SUITE_P(G24AndGry, DeltaBothKinds, ::testing::Values(true, false),
                         [](const auto& info) { return info.param ? "G24" : "GRY"; });

TEST_F(DeltaFixture, OddSizesAndPointersReadWholeRecordsFromEachDeltasOwnPtr) {
    auto layout = deltaSpec(true);
    layout.sprites[0].deltas[0].sizeOverride = 4;    // covers part of the first six-byte record
    layout.sprites[0].deltas[1] = tb::DeltaSpec{};   // size 0
    layout.sprites[2].deltas[0].ptrOverride = 65536; // the third delta overlaps the first
    layout.sprites[2].deltas[0].sizeOverride = 10;
    build(layout);
    ASSERT_TRUE(load());
    EXPECT_EQ(runsOf(delta(0)), (std::vector<RunAt>{{517, 3, {1, 2, 3}}}));
    EXPECT_EQ(runsOf(delta(1)), (std::vector<RunAt>{{0, 0, {}}}));
    EXPECT_EQ(runsOf(delta(2)), (std::vector<RunAt>{{517, 3, {1, 2, 3}}, {250, 1, {4}}}));

    // Saved one after another: 6 bytes, nothing, then the 10 bytes the third delta read.
    EXPECT_EQ(save(), 0);
    const auto after = tb::readFile(path);
    const std::int32_t first = offsets.deltaPtrs[0];
    EXPECT_EQ(tb::getI16(after, offsets.deltaEntries[0]), 6);
    EXPECT_EQ(tb::getI16(after, offsets.deltaEntries[1]), 0);
    EXPECT_EQ(tb::getI32(after, offsets.deltaEntries[1] + 2), first + 6);
    EXPECT_EQ(tb::getI16(after, offsets.deltaEntries[2]), 10);
    EXPECT_EQ(tb::getI32(after, offsets.deltaEntries[2] + 2), first + 6);
    EXPECT_EQ(tb::getI16(after, offsets.pages.offset + first + 6), 517);
}

TEST_F(DeltaFixture, EndOfFileAfterTheLastDeltaFailsTheLoad) {
    struct Case {
        const char* what;
        std::function<void(tb::StyleSpec&)> editSpec;
        std::function<void(std::vector<std::uint8_t>&)> editBytes;
        bool loads;
    };
    const Case cases[] = {
        {"last delta past the end of the file",
         [](auto& layout) {
             layout.sprites[2].deltas[0].ptrOverride = 70'000'000;
             layout.sprites[2].deltas[0].sizeOverride = 32767;
         },
         {},
         false},
        {"last delta running through the sprite numbers",
         [](auto& layout) { layout.sprites[2].deltas[0].sizeOverride = 100; },
         {},
         false},
        {"store ending exactly at the end of the file", [](auto&) {},
         [](auto& bytes) {
             tb::truncate(bytes, bytes.size() - 42);
             tb::setHeaderField(bytes, tb::header24::sprite_numbers_size, 0);
         },
         false},
        {"middle delta past the end, a later one inside the file",
         [](auto& layout) { layout.sprites[0].deltas[1].ptrOverride = 70'000'000; },
         {},
         true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        auto layout = deltaSpec(true);
        c.editSpec(layout);
        build(layout, c.editBytes);
        platform = tb::FakePlatform{};
        EXPECT_EQ(load(), c.loads);
        EXPECT_EQ(platform.messageTexts(),
                  c.loads
                      ? std::vector<std::string>{}
                      : std::vector<std::string>{"Unexpected EOF during load of Delta Graphics"});
        EXPECT_EQ(platform.progressCloseCount, platform.progressOpenCount);
    }
    // Past the end there are only zeros: no run is stored for them.
    EXPECT_EQ(delta(1).runLine.size(), 1u);
    EXPECT_EQ(delta(2).runLine[0].offset, 300);
}

TEST_F(DeltaFixture, NegativePointerIsABadRecordNumberNotARead) {
    auto layout = deltaSpec(true);
    layout.sprites[0].deltas[1].ptrOverride = -10'000'000;
    build(layout);
    EXPECT_FALSE(load());
    EXPECT_EQ(session->errors.pending(), err::BadRecordNumber);
    EXPECT_EQ(delta(1).runLine.size(), 1u);
}

TEST_F(DeltaFixture, StyleWithoutDeltasLoadsAndSavesNothing) {
    auto layout = deltaSpec(true);
    for (auto& s : layout.sprites) s.deltas.clear();
    build(layout);
    const auto before = tb::readFile(path);
    ASSERT_TRUE(load());
    EXPECT_EQ(session->deltas.deltaStart, session->style.gSeekGraphicsEnd);
    EXPECT_EQ(session->deltas.myDeltas.size(), 1u);
    EXPECT_EQ(save(), 0);
    EXPECT_EQ(tb::readFile(path), before);
    EXPECT_EQ(session->style.gSeekGraphicsEnd, static_cast<std::int64_t>(before.size()) - 42 + 1);
}

// ---------------------------------------------------------------- saving

TEST_P(DeltaBothKinds, UnchangedDeltasSaveToTheSameBytes) {
    build(deltaSpec(GetParam()));
    const auto before = tb::readFile(path);
    ASSERT_TRUE(load());
    session->style.gDeltasChanged = true;
    EXPECT_EQ(save(), 0);
    EXPECT_EQ(tb::readFile(path), before);
    EXPECT_FALSE(session->style.gDeltasChanged);
    EXPECT_EQ(session->style.gSeekGraphicsEnd,
              static_cast<std::int64_t>(offsets.spriteNumbers.offset) + 1);
    EXPECT_EQ(platform.progressTitles.back(), "Save Delta Graphics");
    EXPECT_EQ(platform.progressTexts.back(), "Saving Delta Graphics...");
}

TEST_P(DeltaBothKinds, GrownDeltaMovesEveryLaterDeltaAndRewritesTheHeader) {
    const bool is24 = GetParam();
    build(deltaSpec(is24));
    ASSERT_TRUE(load());
    session->deltas.myDeltas[0].runLine.push_back(RunLine{40, 2, {8, 8}}); // 5 more bytes
    EXPECT_EQ(save(), 0);

    const auto after = tb::readFile(path);
    const std::size_t field =
        is24 ? tb::header24::sprite_graphics_size : tb::headerGry::sprite_graphics_size;
    const auto grown = static_cast<std::int32_t>(offsets.spriteGraphics.size + 5);
    EXPECT_EQ(tb::getI32(after, field), grown);
    EXPECT_EQ(session->style.header.sprite_graphics_size(), grown);
    // Size and pointer pairs in sprite info.
    EXPECT_EQ(tb::getI16(after, offsets.deltaEntries[0]), offsets.deltaSizes[0] + 5);
    EXPECT_EQ(tb::getI32(after, offsets.deltaEntries[0] + 2), offsets.deltaPtrs[0]);
    for (std::size_t i = 1; i < 3; ++i) {
        EXPECT_EQ(tb::getI16(after, offsets.deltaEntries[i]), offsets.deltaSizes[i]);
        EXPECT_EQ(tb::getI32(after, offsets.deltaEntries[i] + 2), offsets.deltaPtrs[i] + 5);
        EXPECT_EQ(delta(static_cast<int>(i)).ptr, offsets.deltaPtrs[i] + 5);
    }
    // The added run follows the first delta's own runs; the second delta comes after it.
    const std::size_t added = offsets.deltaData[0] + 10;
    EXPECT_EQ(tb::getI16(after, added), 40);
    EXPECT_EQ(after[added + 2], 2);
    EXPECT_EQ(after[added + 5 + 2], 2); // delta 1's run: offset 2
    EXPECT_EQ(session->style.gSeekGraphicsEnd,
              static_cast<std::int64_t>(offsets.spriteNumbers.offset) + 5 + 1);
}

TEST_F(DeltaFixture, RunWithOffsetZeroEndsTheDeltaOnSave) {
    build(deltaSpec(true));
    ASSERT_TRUE(load());
    auto& lines = session->deltas.myDeltas[0].runLine;
    lines.insert(lines.begin() + 1, RunLine{0, 1, {6}}); // hides the run after it
    EXPECT_EQ(save(), 0);
    const auto after = tb::readFile(path);
    EXPECT_EQ(delta(0).size, 6);
    EXPECT_EQ(tb::getI16(after, offsets.deltaEntries[0]), 6);
    EXPECT_EQ(tb::getI32(after, offsets.deltaEntries[1] + 2), offsets.deltaPtrs[1] - 4);
    EXPECT_EQ(tb::getI32(after, tb::header24::sprite_graphics_size),
              static_cast<std::int32_t>(offsets.spriteGraphics.size - 4));
}

TEST_F(DeltaFixture, SaveRefusesAStartOutsideTheFileAndWritesNothing) {
    build(deltaSpec(true));
    const auto before = tb::readFile(path);
    ASSERT_TRUE(load());
    session->deltas.deltaStart = static_cast<std::int64_t>(before.size()) + 1'000'000;
    EXPECT_EQ(save(), err::BadRecordNumber);
    EXPECT_EQ(tb::readFile(path), before);
}

TEST_F(DeltaFixture, DeltaLargerThanItsSizeFieldIsAnOverflow) {
    build(deltaSpec(true));
    ASSERT_TRUE(load());
    for (int i = 0; i < 130; ++i)
        session->deltas.myDeltas[0].runLine.push_back(
            RunLine{1, 255, std::vector<std::uint8_t>(255, 1)});
    EXPECT_EQ(save(), err::Overflow);
}

// ---------------------------------------------------------------- dump files

TEST_F(DeltaFixture, LoadDumpListsEveryDeltaAndRun) {
    dumps.delta = true;
    build(deltaSpec(true));
    ASSERT_TRUE(load());
    EXPECT_EQ(platform.messageTexts(), std::vector<std::string>{"Generating loadDelta File"});
    const std::string text = tb::readText(dir / "loadDelta.txt");
    EXPECT_NE(text.find(" loadDelta \n"), std::string::npos);
    const std::string start = std::to_string(offsets.deltaData[0] + 1);
    const std::string end = std::to_string(offsets.deltaData[0] + 1 + 10);
    EXPECT_NE(text.find("LOADING DELTA:0\n size:10\n  ptr:65536\n deltaNext:" + end +
                        "\n  deltaStart:" + start + "\n"),
              std::string::npos);
    EXPECT_NE(text.find("runLine(0).offset:517\nrunLine(0).length:3\nrunLine(0).data(0):1\n"
                        "runLine(0).data(1):2\nrunLine(0).data(2):3\n"),
              std::string::npos);
    EXPECT_NE(text.find("runLine(1).offset:250\n"), std::string::npos);
    EXPECT_NE(text.find("   CalcSize:10\n"), std::string::npos);
    EXPECT_NE(text.find("LOADING DELTA:2\n"), std::string::npos);
}

TEST_F(DeltaFixture, SaveDumpLogsOnlyDeltas220To255AndAbove380) {
    tb::StyleSpec layout;
    for (int s = 0; s < 2; ++s) {
        tb::SpriteSpec sprite;
        sprite.w = sprite.h = 4;
        sprite.x = 8 * s;
        for (int d = 0; d < 200; ++d) sprite.deltas.push_back(runs({{1, {1}}}));
        layout.sprites.push_back(sprite);
    }
    tb::sortAndCountSprites(layout);
    build(layout);
    ASSERT_TRUE(load());
    session->options.dumps.delta = true;
    EXPECT_EQ(save(), 0);
    EXPECT_EQ(platform.messageTexts().back(), "Generating saveDelta File");
    const std::string text = tb::readText(dir / "loaddeltassave.txt");
    auto logged = [&](int i) {
        return text.find(" SAVE DELTA:" + std::to_string(i) + " ") != std::string::npos;
    };
    EXPECT_FALSE(logged(219));
    EXPECT_TRUE(logged(220));
    EXPECT_TRUE(logged(255));
    EXPECT_FALSE(logged(256));
    EXPECT_FALSE(logged(380));
    EXPECT_TRUE(logged(381));
    EXPECT_TRUE(logged(399));
    const std::string ptr = std::to_string(65536 + 220 * 4);
    EXPECT_NE(text.find(" SAVE DELTA:220  ptr:" + ptr +
                        "\n myDeltas(220).runLine(0).offset:1\n"
                        " myDeltas(220).runLine(0).length:1\n sprite_info.delta.ptr:" +
                        ptr + "\n sprite_info.delta.size:4\n"),
              std::string::npos);
}
