#include "base/atomic_file.h"
#include "sound/sound_preview.h"

#include "base/binary_file.h"
#include "cli_runner.h"
#include "fake_platform.h"
#include "platform/console_platform.h"
#include "session/load_sequence.h"
#include "session/session_io.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <climits>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

// What a sound operation gave, in words a failed expectation shows.
std::string soundKind(const SoundResult& result) {
    if (result) return "done";
    switch (result.error().refusal) {
    case SoundRefusal::NoBank:
        return "no bank";
    case SoundRefusal::OutOfRange:
        return "out of range";
    case SoundRefusal::Failed:
        return "failed";
    }
    return "?";
}

std::vector<std::uint8_t> sdt(const std::vector<SdtRecord>& records) {
    std::vector<std::uint8_t> out(records.size() * 12);
    for (std::size_t i = 0; i < records.size(); ++i) {
        tb::putI32(out, 12 * i, records[i].offset);
        tb::putI32(out, 12 * i + 4, records[i].length);
        tb::putI32(out, 12 * i + 8, records[i].rate);
    }
    return out;
}

std::vector<std::uint8_t> rawBytes(std::size_t n) {
    std::vector<std::uint8_t> out(n);
    for (std::size_t i = 0; i < n; ++i) out[i] = static_cast<std::uint8_t>(100 + i);
    return out;
}

struct SoundFixture : ::testing::Test {
    tb::TempDir dir;
    tb::FakePlatform platform;
    std::unique_ptr<StyleSession> session;

    // Level 1 with a three-record bank: (1, 4, 22050), (5, 3, 11025), (8, 2, 22050) over a
    // 20-byte RAW file. The names are in mixed case, as they come off a game CD.
    void SetUp() override { useSession(false); }
    void useSession(bool debug) {
        AppOptions options;
        options.debugMode = debug;
        options.workDir = dir / "work";
        std::filesystem::create_directories(options.workDir);
        session = std::make_unique<StyleSession>(options);
        prepareStyle(session->style, dir / "STYLE001.G24", kLoadSprites);
    }
    void bank(const std::vector<SdtRecord>& records, std::size_t rawSize = 20) {
        std::filesystem::create_directories(dir / "Audio");
        tb::writeFile(dir / "Audio" / "Level001.sdt", sdt(records));
        tb::writeFile(dir / "Audio" / "LEVEL001.raw", rawBytes(rawSize));
    }
    void standardBank() { bank({{1, 4, 22050}, {5, 3, 11025}, {8, 2, 22050}}); }
    std::vector<std::string> messages() const { return platform.messageTexts(); }
};

TEST_F(SoundFixture, TableHasAZeroRecordFirstAndOneEntryPerTwelveBytes) {
    standardBank();
    SoundTable table;
    ASSERT_TRUE(loadSDT(*session, table));
    ASSERT_EQ(table.lastIndex(), 3);
    EXPECT_EQ(table.SDT[0].offset, 0);
    EXPECT_EQ(table.SDT[0].length, 0);
    EXPECT_EQ(table.SDT[2].offset, 5);
    EXPECT_EQ(table.SDT[2].rate, 11025);
    // A cut last record still counts, its missing bytes as zeros.
    auto bytes = tb::readFile(dir / "Audio" / "Level001.sdt");
    bytes.resize(bytes.size() + 5, 1);
    tb::writeFile(dir / "Audio" / "Level001.sdt", bytes);
    ASSERT_TRUE(loadSDT(*session, table));
    ASSERT_EQ(table.lastIndex(), 4);
    EXPECT_EQ(table.SDT[4].offset, 0x01010101);
    EXPECT_EQ(table.SDT[4].length, 1);
}

TEST_F(SoundFixture, WavHeaderCountsTheRepeatsInTheDataSizeOnly) {
    standardBank();
    const auto wav = dir / "out.wav";
    ASSERT_EQ(soundKind(writeSoundWav(*session, platform, 1, 1.5, 2, wav)), "done");
    const auto f = tb::readFile(wav);
    ASSERT_EQ(f.size(), 44u + 8u);
    EXPECT_EQ(std::string(f.begin(), f.begin() + 4), "RIFF");
    EXPECT_EQ(tb::getI32(f, 4), 4 + 36); // one copy of the sample, whatever the repeats
    EXPECT_EQ(std::string(f.begin() + 8, f.begin() + 16), "WAVEfmt ");
    EXPECT_EQ(tb::getI32(f, 16), 16);
    EXPECT_EQ(tb::getI16(f, 20), 1);
    EXPECT_EQ(tb::getI16(f, 22), 1);
    EXPECT_EQ(tb::getI32(f, 24), 33075);
    EXPECT_EQ(tb::getI32(f, 28), 33075);
    EXPECT_EQ(tb::getI16(f, 32), 1);
    EXPECT_EQ(tb::getI16(f, 34), 8);
    EXPECT_EQ(std::string(f.begin() + 36, f.begin() + 40), "data");
    EXPECT_EQ(tb::getI32(f, 40), 8);
    // The copy starts one byte before the recorded offset: RAW bytes 0..3, twice.
    const std::vector<std::uint8_t> data(f.begin() + 44, f.end());
    EXPECT_EQ(data, (std::vector<std::uint8_t>{100, 101, 102, 103, 100, 101, 102, 103}));
    EXPECT_TRUE(messages().empty());
}

TEST_F(SoundFixture, NumbersUpToTheLastIndexMinusOneAreInRange) {
    standardBank();
    const auto wav = dir / "out.wav";
    EXPECT_EQ(soundKind(writeSoundWav(*session, platform, 2, 1.0, 1, wav)), "done");
    const auto f = tb::readFile(wav);
    EXPECT_EQ(std::vector<std::uint8_t>(f.begin() + 44, f.end()),
              (std::vector<std::uint8_t>{104, 105, 106}));
    for (std::int16_t n : {std::int16_t{3}, std::int16_t{-1}}) {
        platform.shownMessages.clear();
        EXPECT_EQ(soundKind(writeSoundWav(*session, platform, n, 1.0, 1, wav)), "out of range")
            << n;
        EXPECT_EQ(messages(), std::vector<std::string>{"Sound is out of range."}) << n;
    }
    // Number 0 is in range but is the empty record at offset 0: positioning at 0 is a bad
    // record number, reported as the general error with what the record is beside it.
    platform.shownMessages.clear();
    EXPECT_EQ(soundKind(writeSoundWav(*session, platform, 0, 1.0, 1, wav)), "failed");
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_EQ(messages()[0],
              "Run-time error '63':\rBad record number\rSound 0 is the table's empty record, "
              "placed before the first record of Level001.sdt: it holds no sound. The bank's "
              "sounds are numbered from 1.");
}

// As the game's banks are laid out: the file's first record (sound 1) starts at byte 0, which
// the preview's one-byte shift cannot read; the game reads it, and so does --exact.
TEST_F(SoundFixture, TheFirstRecordAtOffsetZeroSaysWhyOnlyThePreviewCannotPlayIt) {
    bank({{0, 4, 22050}, {4, 3, 11025}, {7, 2, 22050}});
    const auto wav = dir / "first.wav";
    EXPECT_EQ(soundKind(writeSoundWav(*session, platform, 1, 1.0, 1, wav)), "failed");
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_EQ(messages()[0].rfind("Run-time error '63':\rBad record number\rSound 1 starts at the "
                                  "first byte of LEVEL001.raw: the preview reads a sound from one "
                                  "byte before its recorded start",
                                  0),
              0u)
        << messages()[0];
    EXPECT_FALSE(std::filesystem::exists(wav));

    EXPECT_EQ(soundKind(writeSoundWav(*session, platform, 1, 1.0, 1, wav, SoundReading::AsStored)),
              "done");
    const auto f = tb::readFile(wav);
    EXPECT_EQ(std::vector<std::uint8_t>(f.begin() + 44, f.end()),
              (std::vector<std::uint8_t>{100, 101, 102, 103}));
    // The command line says the same, the cause on the line after the specified text.
    tb::writeFile(dir / "STYLE001.G24", {0});
    const auto run = tb::runCli(
        {"sound", (dir / "STYLE001.G24").string(), "1", "-o", (dir / "cli.wav").string()});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(
        tb::contains(run.err, "Bad record number\nmessage: Sound 1 starts at the first byte"))
        << run.err;
}

TEST_F(SoundFixture, PlayingUsesATemporaryWavThatIsDeletedAfterwards) {
    standardBank();
    ASSERT_EQ(soundKind(playSound(*session, platform, 1, 1.0, 1)), "done");
    ASSERT_EQ(platform.playedSounds.size(), 1u);
    // In a folder of this run's own, so two runs never share it; the folder goes too.
    const std::filesystem::path runFolder = dir / "work" / ("~run" + std::to_string(processId()));
    EXPECT_EQ(platform.playedSounds[0], runFolder / "~tmp1.wav");
    EXPECT_EQ(platform.playedSoundBytes[0].size(), 48u);
    EXPECT_EQ(tb::getI32(platform.playedSoundBytes[0], 24), 22050);
    EXPECT_FALSE(std::filesystem::exists(runFolder));
    EXPECT_FALSE(platform.busy);
}

TEST_F(SoundFixture, MissingBankFilesPlayNothingAndSayNothing) {
    standardBank();
    std::filesystem::remove(dir / "Audio" / "LEVEL001.raw");
    EXPECT_EQ(soundKind(playSound(*session, platform, 1, 1.0, 1)), "no bank");
    EXPECT_TRUE(messages().empty());
    EXPECT_TRUE(platform.playedSounds.empty());
}

TEST_F(SoundFixture, RecordsOutsideTheRawFileFailCleanly) {
    struct Case {
        SdtRecord bad;
        std::string message;
    };
    const std::vector<Case> cases = {
        {{18, 5, 11025},
         "Run-time error '63':\rBad record number\rSound 2 (offset 18, length 5) "
         "reaches past the end of LEVEL001.raw (20 bytes): the bank's two files "
         "do not belong together."},
        {{-7, 2, 11025},
         "Run-time error '63':\rBad record number\rSound 2 has a negative offset "
         "(-7) or length (2) in Level001.sdt."},
        {{1, -4, 11025},
         "Run-time error '63':\rBad record number\rSound 2 has a negative offset "
         "(1) or length (-4) in Level001.sdt."},
        {{1, 4, 2000000000}, "Run-time error '6':\rOverflow"}, // x 1.5 does not fit
    };
    for (const Case& c : cases) {
        bank({{1, 4, 22050}, c.bad, {8, 2, 22050}});
        platform.shownMessages.clear();
        EXPECT_EQ(soundKind(playSound(*session, platform, 2, 1.5, 1)), "failed") << c.message;
        EXPECT_EQ(messages(), std::vector<std::string>{c.message});
        EXPECT_TRUE(platform.playedSounds.empty());
        EXPECT_FALSE(
            std::filesystem::exists(dir / "work" / ("~run" + std::to_string(processId()))));
    }
}

TEST_F(SoundFixture, DataSizeThatDoesNotFitIsAnOverflowNotAHugeFile) {
    bank({{1, 70000, 11025}, {1, 1, 11025}}, 70000);
    const auto wav = dir / "big.wav";
    EXPECT_EQ(soundKind(writeSoundWav(*session, platform, 1, 1.0, 32767, wav)), "failed");
    EXPECT_EQ(messages(), std::vector<std::string>{"Run-time error '6':\rOverflow"});
    EXPECT_FALSE(std::filesystem::exists(wav));
}

TEST_F(SoundFixture, DebugModeLetsTheErrorEscapeAndStillRemovesTheTemporaryFile) {
    useSession(true);
    standardBank();
    EXPECT_THROW((void)playSound(*session, platform, 0, 1.0, 1), RuntimeError);
    EXPECT_FALSE(std::filesystem::exists(dir / "work" / ("~run" + std::to_string(processId()))));
}

TEST_F(SoundFixture, CommandLineWritesTheWavThatWouldBePlayed) {
    standardBank();
    tb::writeFile(dir / "STYLE001.G24", {0});
    const auto wav = dir / "cli.wav";
    const auto played = tb::runCli({"sound", (dir / "STYLE001.G24").string(), "1", "--rate", "1.5",
                                    "--repeat", "2", "-o", wav.string()});
    ASSERT_EQ(played.status, 0) << played.err;
    const auto f = tb::readFile(wav);
    ASSERT_EQ(f.size(), 52u);
    EXPECT_EQ(tb::getI32(f, 24), 33075);
    EXPECT_EQ(tb::getI32(f, 40), 8);

    const auto outOfRange =
        tb::runCli({"sound", (dir / "STYLE001.G24").string(), "3", "-o", wav.string()});
    EXPECT_EQ(outOfRange.status, 1);
    EXPECT_EQ(outOfRange.err, "message: Sound is out of range.\n");
}

// The input that made the fuzz target time out: offset and length wrap around in 32 bits, so
// their sum looked inside the RAW file and gigabytes were copied before the error was noticed.
TEST_F(SoundFixture, WrappingRecordIsRefusedBeforeAnythingIsWritten) {
    bank({{1, 4, 22050}, {INT32_MIN, INT32_MAX - 40, 11025}, {8, 2, 22050}});
    const auto wav = dir / "wrap.wav";
    tb::writeFile(wav, {7, 7}); // an earlier WAV stays as it was
    EXPECT_EQ(soundKind(writeSoundWav(*session, platform, 2, 1.0, 1, wav)), "failed");
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_EQ(
        messages()[0].rfind("Run-time error '63':\rBad record number\rSound 2 has a negative", 0),
        0u);
    EXPECT_EQ(tb::readFile(wav), (std::vector<std::uint8_t>{7, 7}));
}

TEST_F(SoundFixture, RepeatsRatesAndSizesOutsideTheLimitsWriteNothing) {
    standardBank();
    const auto wav = dir / "limit.wav";
    struct Case {
        double rate;
        int repeat;
        const char* message;
    };
    const Case cases[] = {{1e-300, 1, "the rate multiplier must be 0.01 to 100."},
                          {1.0, kMaxRepeatCount + 1, "the repeat count must be 1 to 100."},
                          {0.01, 1, "is outside 1 to 1000000 samples per second."}};
    bank({{1, 4, 22050}, {1, 4, 50}, {8, 2, 22050}});
    for (const Case& c : cases) {
        platform.shownMessages.clear();
        EXPECT_EQ(soundKind(writeSoundWav(*session, platform, 2, c.rate,
                                          static_cast<std::int16_t>(c.repeat), wav)),
                  "failed")
            << c.message;
        ASSERT_EQ(messages().size(), 1u);
        EXPECT_NE(messages()[0].find(c.message), std::string::npos) << messages()[0];
        EXPECT_FALSE(std::filesystem::exists(wav));
    }
    // The 64 MB cap on the sound itself.
    bank({{1, 4, 22050}, {1, 1'000'000, 22050}, {8, 2, 22050}}, 1'000'000);
    platform.shownMessages.clear();
    EXPECT_EQ(soundKind(writeSoundWav(*session, platform, 2, 1.0, 100, wav)), "failed");
    EXPECT_NE(messages().at(0).find("more than 64 MB"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(wav));

    // The command line gives the same limits as usage errors.
    tb::writeFile(dir / "STYLE001.G24", {0});
    for (const char* bad : {"--repeat=101", "--rate=1e-300", "--rate=101"}) {
        const auto run =
            tb::runCli({"sound", (dir / "STYLE001.G24").string(), "1", bad, "-o", wav.string()});
        EXPECT_EQ(run.status, 2) << bad;
    }
}

} // namespace

TEST(ConsoleSound, PlaybackThatFailsSaysWhyAndTheCommandLineNamesAMissingStyle) {
    tb::TempDir dir;
    std::ostringstream out, err;
    ConsolePlatform platform(out, err);
    platform.setPlaybackEnabled(true);
    EXPECT_FALSE(platform.playWavSync(dir / "missing.wav"));
    EXPECT_FALSE(platform.playbackError().empty());

    const auto missing = tb::runCli({"sound", (dir / "STYLE001.G24").string(), "1", "--play"});
    EXPECT_EQ(missing.status, 2);
    EXPECT_TRUE(tb::contains(missing.err, "File does not exist")) << missing.err;
}
