#include "exchange/gc3.h"

#include "base/atomic_file.h"

#include "exchange_fixture.h"
#include "fake_platform.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <random>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

std::vector<std::uint8_t> randomBytes(std::size_t n, unsigned seed) {
    std::mt19937 rng(seed);
    std::vector<std::uint8_t> out(n);
    for (auto& b : out) b = static_cast<std::uint8_t>(rng());
    return out;
}

struct Gc3Fixture : ::testing::Test {
    tb::TempDir dir;
    tb::FakePlatform platform;
    std::filesystem::path modStyle = dir / "mod" / "STYLE001.G24";
    std::filesystem::path origStyle = dir / "orig" / "STYLE001.G24";
    std::filesystem::path modFxt = dir / "mod" / "ENGLISH.FXT";
    std::filesystem::path origFxt = dir / "orig" / "ENGLISH.FXT";
    std::filesystem::path pack = dir / "CARS.GC3";

    void SetUp() override {
        std::filesystem::create_directories(dir / "mod");
        std::filesystem::create_directories(dir / "orig");
    }
    void files(const std::vector<std::uint8_t>& mod, const std::vector<std::uint8_t>& orig,
               const std::vector<std::uint8_t>& modText = {1, 2, 3},
               const std::vector<std::uint8_t>& origText = {1, 2, 3}) {
        tb::writeFile(modStyle, mod);
        tb::writeFile(origStyle, orig);
        tb::writeFile(modFxt, modText);
        tb::writeFile(origFxt, origText);
    }
    bool write(double seconds = 0) {
        return writeGC3(modStyle, origStyle, modFxt, origFxt, pack, platform,
                        [seconds] { return seconds; });
    }
    // The pack applied in memory to two files as the applier applies it.
    Gc3Merged apply(const std::filesystem::path& style, const std::filesystem::path& fxt) {
        const auto bytes = tb::readFile(pack);
        const Result<Gc3Pack> read = parseGc3(bytes);
        if (!read)
            return {gc3Refusal(Gc3Refusal::Unreadable, read.message()),
                    {},
                    {},
                    false,
                    false,
                    {},
                    std::nullopt};
        const Gc3Pack& p = *read;
        const auto styleBytes = tb::readFile(style), fxtBytes = tb::readFile(fxt);
        return mergeGc3Pack(p, findGc3Trailer(bytes, p.header), findGc3Originals(bytes, p),
                            {style, styleBytes}, {fxt, fxtBytes});
    }
    Gc3Pack parsed() {
        const Result<Gc3Pack> p = parseGc3(tb::readFile(pack));
        EXPECT_TRUE(p.ok()) << p.message();
        return p.valueOr({});
    }
};

// ---- Writing ---------------------------------------------------------------------------------

TEST_F(Gc3Fixture, IdenticalFilesGiveAHeaderWithEmptyRecordRanges) {
    const auto bytes = randomBytes(10000, 1);
    files(bytes, bytes);
    ASSERT_TRUE(write(3600.4));
    const auto file = tb::readFile(pack);
    // The header, no records, the unmodified bytes (none but their head), the unmodified
    // style file's layout (none: random bytes are no style file), the trailer.
    ASSERT_EQ(file.size(), 31u + 12u + 12u + kGc3TrailerSize);
    const std::size_t layout = file.size() - kGc3TrailerSize - 12u;
    EXPECT_EQ(std::string(file.begin() + layout, file.begin() + layout + 4), "TQSH");
    EXPECT_EQ(tb::getI32(file, layout + 4), 0);
    EXPECT_EQ(tb::getI32(file, layout + 8), 0);
    EXPECT_EQ(std::string(file.begin(), file.begin() + 3), "GC3");
    EXPECT_EQ(tb::getI16(file, 3), 1);
    EXPECT_EQ(file[5], 3600 % 255);
    EXPECT_EQ(file[6], 1);
    EXPECT_EQ(tb::getI32(file, 7), 32);  // StyleDataPosition
    EXPECT_EQ(tb::getI32(file, 11), 31); // StyleDataPositionEnd = StyleDataPosition - 1
    EXPECT_EQ(tb::getI32(file, 15), 10000);
    EXPECT_EQ(tb::getI32(file, 19), 32);
    EXPECT_EQ(tb::getI32(file, 23), 31);
    EXPECT_EQ(tb::getI32(file, 27), 3);
    EXPECT_EQ(platform.progressTitles.back(), "Writing GC3 file");
    EXPECT_EQ(platform.progressTexts.back(), "Writing...");
}

TEST_F(Gc3Fixture, EncryptByteIsTheRoundedSecondsSinceMidnightModulo255) {
    EXPECT_EQ(gc3EncryptByte(0), 0);
    EXPECT_EQ(gc3EncryptByte(254.4), 254);
    EXPECT_EQ(gc3EncryptByte(254.6), 0);
    EXPECT_EQ(gc3EncryptByte(86399.0), 86399 % 255);
}

TEST_F(Gc3Fixture, ChangedBytesGiveRunsOfEightAcrossBlocksThatStopAtTheFileEnd) {
    struct Case {
        const char* name;
        std::vector<std::size_t> changed;                        // 0-based
        std::size_t extra;                                       // bytes added to the end
        std::vector<std::pair<std::int32_t, std::int32_t>> runs; // (last position, length)
    };
    const std::vector<Case> cases = {
        {"one changed byte at position 100", {99}, 0, {{107, 8}}},
        {"a second change inside the first eight", {10, 17}, 0, {{18, 8}}},
        {"a change just after eight bytes carries on", {10, 18}, 0, {{26, 16}}},
        {"two separate changes", {10, 40}, 0, {{18, 8}, {48, 8}}},
        {"across the 4096-byte block boundary", {4093}, 0, {{4101, 8}}},
        {"cut short by the end of the file", {9997}, 0, {{10000, 3}}},
        {"extra bytes of a longer modified file", {}, 123, {{10123, 123}}},
    };
    const auto orig = randomBytes(10000, 3);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto mod = orig;
        for (auto i : c.changed) mod[i] ^= 0x5A;
        const auto extra = randomBytes(c.extra, 5);
        mod.insert(mod.end(), extra.begin(), extra.end());
        files(mod, orig);
        ASSERT_TRUE(write());
        const auto p = parsed();
        ASSERT_EQ(p.styleRecords.size(), c.runs.size());
        std::int32_t end = 31; // each record: 8 bytes of head, then its data
        for (std::size_t i = 0; i < c.runs.size(); ++i) {
            const auto [last, length] = c.runs[i];
            EXPECT_EQ(p.styleRecords[i].position, last);
            EXPECT_EQ(p.styleRecords[i].length, length);
            EXPECT_EQ(p.styleRecords[i].data,
                      std::vector<std::uint8_t>(mod.begin() + last - length, mod.begin() + last));
            end += 8 + length;
        }
        EXPECT_EQ(p.header.StyleDataPositionEnd, end);
        EXPECT_EQ(p.header.StyleDataLOF, static_cast<std::int32_t>(mod.size()));
        EXPECT_TRUE(p.fxtRecords.empty());
    }
}

TEST_F(Gc3Fixture, StylesOfTwoLevelsAreRefused) {
    files({1}, {1});
    const auto other = dir / "orig" / "STYLE002.G24";
    tb::writeFile(other, {1});
    tb::writeFile(pack, {9, 9, 9});
    EXPECT_FALSE(writeGC3(modStyle, other, modFxt, origFxt, pack, platform, [] { return 0.0; }));
    ASSERT_EQ(platform.messageTexts().size(), 1u);
    EXPECT_EQ(platform.messageTexts()[0],
              "Writing of GC3 cannot be accomplished on styles from two different levels.");
    EXPECT_EQ(tb::readFile(pack), (std::vector<std::uint8_t>{9, 9, 9})); // the old pack stays
}

TEST_F(Gc3Fixture, AFailedOrRefusedWriteLeavesTheOldPack) {
    const auto orig = randomBytes(5000, 11);
    auto mod = orig;
    mod[100] ^= 1;
    files(mod, orig);
    const std::vector<std::uint8_t> old = {'o', 'l', 'd'};
    // Each system step of the replace fails in turn: the old pack is left, with the cause named.
    int steps = 0;
    setReplaceFaultHook([&steps](std::string_view, const std::filesystem::path&) {
        ++steps;
        return std::error_code{};
    });
    tb::writeFile(pack, old);
    ASSERT_TRUE(write());
    const auto written = tb::readFile(pack);
    ASSERT_GT(steps, 2);
    for (int failAt = 1; failAt <= steps; ++failAt) {
        SCOPED_TRACE(failAt);
        tb::writeFile(pack, old);
        int seen = 0;
        setReplaceFaultHook([&seen, failAt](std::string_view, const std::filesystem::path&) {
            return ++seen == failAt ? std::make_error_code(std::errc::no_space_on_device)
                                    : std::error_code{};
        });
        platform.shownMessages.clear();
        EXPECT_FALSE(write());
        EXPECT_EQ(tb::readFile(pack), old);
        ASSERT_EQ(platform.messageTexts().size(), 1u);
        EXPECT_EQ(platform.messageTexts()[0],
                  "Error writing GC3 file.\r" + pack.string() + ": disk full.");
    }
    setReplaceFaultHook({});

    // A result check that refuses leaves the old pack too, its cause beside the message.
    tb::writeFile(pack, old);
    platform.shownMessages.clear();
    EXPECT_FALSE(writeGC3(
        modStyle, origStyle, modFxt, origFxt, pack, platform, [] { return 0.0; },
        [](const auto&, const auto&) { return std::string("not a style"); }));
    EXPECT_EQ(platform.messageTexts(),
              std::vector<std::string>{"Error writing GC3 file.\rnot a style"});
    EXPECT_EQ(tb::readFile(pack), old);
    ASSERT_TRUE(write(0));
    EXPECT_EQ(tb::readFile(pack), written);
}

// A write of the pack killed half way leaves a side file beside it; the next write removes it.
TEST_F(Gc3Fixture, TheNextWriteRemovesTheSideFileOfAKilledOneAndNamesIt) {
    const auto orig = randomBytes(5000, 12);
    auto mod = orig;
    mod[7] ^= 1;
    files(mod, orig);
    const std::filesystem::path leftover = pack.string() + ".~new999999-0";
    tb::writeFile(leftover, {'h', 'a', 'l', 'f'});
    platform.shownMessages.clear();
    ASSERT_TRUE(write());
    EXPECT_FALSE(std::filesystem::exists(leftover));
    const auto said = platform.messageTexts();
    EXPECT_TRUE(std::any_of(said.begin(), said.end(), [&](const std::string& text) {
        return text.find(leftover.filename().string()) != std::string::npos;
    })) << ::testing::PrintToString(said);
}

TEST_F(Gc3Fixture, MissingInputOrPackIsAnError) {
    files({1}, {1});
    std::filesystem::remove(origFxt);
    EXPECT_FALSE(write());
    EXPECT_EQ(platform.messageTexts(),
              std::vector<std::string>{"Error writing GC3 file.\r" + origFxt.string() +
                                       " does not exist."});

    Gc3Header h;
    EXPECT_FALSE(readGC3(dir / "none.gc3", h, platform));
    tb::writeFile(pack, {'G', 'C', '3', 1, 0});
    EXPECT_FALSE(readGC3(pack, h, platform));
    EXPECT_EQ(platform.messageTexts().back(), "Error reading GC3 file.");
    EXPECT_EQ(platform.messageTexts().size(), 3u);
}

// ---- Applying --------------------------------------------------------------------------------

TEST_F(Gc3Fixture, WriteThenApplyReproducesTheModifiedFiles) {
    struct Case {
        const char* name;
        std::size_t origSize, modSize;
        unsigned changes;
    };
    const std::vector<Case> cases = {{"same size", 20000, 20000, 40},
                                     {"grown", 9000, 13000, 5},
                                     {"shrunk", 13000, 9000, 5},
                                     {"empty original", 0, 700, 0}};
    for (const Case& c : cases) {
        const auto orig = randomBytes(c.origSize, 7);
        auto mod = randomBytes(c.modSize, 7); // shares the unmodified file's prefix
        std::mt19937 rng(c.changes);
        for (unsigned i = 0; i < c.changes && !mod.empty(); ++i) mod[rng() % mod.size()] ^= 0x81;
        const std::vector<std::uint8_t> origText = {'[', 'c', 'a', 'r', '1', ']', 'A'};
        const std::vector<std::uint8_t> modText = {'[', 'c', 'a', 'r', '1', ']', 'B', 'u', 's'};
        files(mod, orig, modText, origText);
        ASSERT_TRUE(write()) << c.name;

        const auto target = dir / "target";
        std::filesystem::create_directories(target);
        tb::writeFile(target / "STYLE001.G24", orig);
        tb::writeFile(target / "ENGLISH.FXT", origText);
        const Gc3Merged merged = apply(target / "STYLE001.G24", target / "ENGLISH.FXT");
        ASSERT_TRUE(merged.applied.ok()) << c.name << merged.applied.message();
        EXPECT_EQ(merged.style, mod) << c.name;
        EXPECT_EQ(merged.fxt, modText) << c.name;
    }
}

TEST_F(Gc3Fixture, ApplyRefusesAndWritesNothing) {
    const auto orig = randomBytes(3000, 8);
    auto mod = orig;
    mod[10] ^= 1;
    mod.push_back(42);
    files(mod, orig);
    ASSERT_TRUE(write());
    const auto good = tb::readFile(pack);

    struct Case {
        const char* name;
        std::string styleName;
        std::function<void(std::vector<std::uint8_t>& pack, std::vector<std::uint8_t>& style)> edit;
        std::string message;
    };
    const std::vector<Case> cases = {
        {"style file too short for the run", "STYLE001.G24",
         [](auto&, auto& style) { style.resize(2000); }, "changed since it was made"},
        {"run past the recorded length", "STYLE001.G24",
         [](auto& p, auto&) { tb::putI32(p, 15, 3000); }, "run past the recorded length"},
        {"record running past the pack's end", "STYLE001.G24",
         [](auto& p, auto&) { tb::putI32(p, 32 + 4, 5000); }, "is damaged"},
        {"pack shorter than its header", "STYLE001.G24", [](auto& p, auto&) { p.resize(20); },
         "shorter than its header"},
        {"record range outside the pack", "STYLE001.G24",
         [](auto& p, auto&) { tb::putI32(p, 11, 1 << 30); }, "lies outside the pack"},
    };
    for (const Case& c : cases) {
        auto packBytes = good;
        auto style = orig;
        c.edit(packBytes, style);
        tb::writeFile(pack, packBytes);
        const auto target = dir / "refuse";
        std::filesystem::remove_all(target);
        std::filesystem::create_directories(target);
        tb::writeFile(target / c.styleName, style);
        tb::writeFile(target / "ENGLISH.FXT", {1, 2, 3});
        const Gc3Merged merged = apply(target / c.styleName, target / "ENGLISH.FXT");
        EXPECT_FALSE(merged.applied.ok()) << c.name;
        EXPECT_NE(merged.applied.message().find(c.message), std::string::npos)
            << c.name << ": " << merged.applied.message();
        EXPECT_TRUE(merged.style.empty() && merged.fxt.empty()) << c.name;
    }
}

} // namespace

namespace {

TEST_F(Gc3Fixture, CommandLineReadsPacksAndRefusesToWriteFilesTheEditorCannotOpen) {
    const auto orig = randomBytes(6000, 9);
    auto mod = orig;
    mod[4000] ^= 3;
    files(mod, orig, {'n', 'e', 'w'}, {'o', 'l', 'd'});
    ASSERT_TRUE(write());
    auto read = tb::runCli({"gc3", "read", pack.string()});
    ASSERT_EQ(read.status, 0) << read.err;
    const std::string tail = "stylenum:1\nStyleDataPosition:32\nStyleDataPositionEnd:47\n"
                             "StyleDataLOF:6000\nFXTDataPosition:48\nFXTDataPositionEnd:58\n"
                             "FXTDataLOF:3\n";
    EXPECT_EQ(read.out.substr(0, 20), "File Type:GC3\nver:1\n");
    EXPECT_EQ(read.out.substr(read.out.size() - tail.size()), tail);

    // Random bytes are no style file: the command line's writer checks what the pack makes.
    const auto before = tb::readFile(pack);
    auto written = tb::runCli({"gc3", "write", modStyle.string(), origStyle.string(),
                               modFxt.string(), origFxt.string(), pack.string()});
    EXPECT_EQ(written.status, 1);
    EXPECT_NE(written.err.find("message: Error writing GC3 file.\n"
                               "message: The changed files would not open in the editor:"),
              std::string::npos)
        << written.err;
    EXPECT_EQ(tb::readFile(pack), before);

    auto missing = tb::runCli({"gc3", "read", (dir / "none.gc3").string()});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err, "message: Error reading GC3 file.\n");
}

} // namespace
