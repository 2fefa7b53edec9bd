// Replacing a sound of the level's bank with a recording, through the command line and the
// session's undo and redo.

#include "base/atomic_file.h"
#include "cli_runner.h"
#include "fake_platform.h"
#include "session/file_backups.h"
#include "session/load_sequence.h"
#include "session/sound_edits.h"
#include "session/style_session.h"
#include "sound/sound_file_reader.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#if TORQUIL_SNDFILE
#include <sndfile.h>
#endif

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

// What a sound operation gave, in words a failed expectation shows.
std::string importKind(const SoundResult& result) {
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

struct SoundImportFixture : ::testing::Test {
    tb::TempDir dir;
    tb::FakePlatform platform;
    std::unique_ptr<StyleSession> session;
    std::vector<std::uint8_t> oldSdt, oldRaw;

    fs::path style() const { return dir / "STYLE001.G24"; }
    fs::path sdt() const { return dir / "audio" / "LEVEL001.SDT"; }
    fs::path raw() const { return dir / "audio" / "LEVEL001.RAW"; }

    // Level 1 with three sounds laid out as the game's banks are: back to back from offset 0.
    void SetUp() override {
        processBackups().reset();
        const auto [s, r] = tb::buildSoundBank(
            {{{10, 20, 30, 40}, 11025}, {{50, 60, 70}, 22050}, {{80, 90}, 11025}});
        fs::create_directories(dir / "audio");
        tb::writeFile(sdt(), s);
        tb::writeFile(raw(), r);
        tb::writeFile(style(), {0});
        oldSdt = s;
        oldRaw = r;
        AppOptions options;
        options.workDir = dir / "work";
        fs::create_directories(options.workDir);
        session = std::make_unique<StyleSession>(options);
        prepareStyle(session->style, style(), kLoadSprites);
    }
    void TearDown() override { processBackups().reset(); }
    bool bankUnchanged() const {
        return tb::readFile(sdt()) == oldSdt && tb::readFile(raw()) == oldRaw;
    }
};

#if TORQUIL_SNDFILE
// Writes a recording through libsndfile.
void writeRecording(const fs::path& file, int format, int rate, int channels,
                    const std::vector<short>& frames) {
    SF_INFO info{};
    info.samplerate = rate;
    info.channels = channels;
    info.format = format;
    SNDFILE* out = sf_open(file.c_str(), SFM_WRITE, &info);
    ASSERT_NE(out, nullptr) << sf_strerror(nullptr);
    EXPECT_EQ(sf_write_short(out, frames.data(), static_cast<sf_count_t>(frames.size())),
              static_cast<sf_count_t>(frames.size()));
    sf_close(out);
}

std::vector<std::uint8_t> wavData(const fs::path& wav) {
    const auto f = tb::readFile(wav);
    return {f.begin() + 44, f.end()};
}

TEST_F(SoundImportFixture, AnImportedWavComesBackWithItsSamplesAndRate) {
    // An 8-bit WAV at a rate of its own: 300 samples over the whole range.
    std::vector<std::uint8_t> samples(300);
    std::vector<short> frames;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<std::uint8_t>((i * 37) % 256);
        frames.push_back(static_cast<short>((samples[i] - 128) * 256));
    }
    const fs::path horn = dir / "horn.wav";
    writeRecording(horn, SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 16000, 1, frames);

    const auto run = tb::runCli({"sound-import", style().string(), "2", horn.string()});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(tb::contains(run.out, "sound 2 replaced: 300 samples at 16000 per second"))
        << run.out;

    // The record's own bytes, as the game reads them: the samples and the rate as imported.
    const fs::path back = dir / "back.wav";
    ASSERT_EQ(tb::runCli({"sound", style().string(), "2", "--exact", "-o", back.string()}).status,
              0);
    EXPECT_EQ(wavData(back), samples);
    EXPECT_EQ(tb::getI32(tb::readFile(back), 24), 16000);
    // The play buttons' copy starts one byte early, as for every record of the bank.
    const fs::path preview = dir / "preview.wav";
    ASSERT_EQ(tb::runCli({"sound", style().string(), "2", "-o", preview.string()}).status, 0);
    std::vector<std::uint8_t> shifted{oldRaw.back()};
    shifted.insert(shifted.end(), samples.begin(), samples.end() - 1);
    EXPECT_EQ(wavData(preview), shifted);

    // The samples went to the RAW's end; every other record and byte stayed; both .bak kept.
    const auto newRaw = tb::readFile(raw());
    ASSERT_EQ(newRaw.size(), oldRaw.size() + samples.size());
    EXPECT_TRUE(std::equal(oldRaw.begin(), oldRaw.end(), newRaw.begin()));
    const auto newSdt = tb::readFile(sdt());
    ASSERT_EQ(newSdt.size(), oldSdt.size());
    EXPECT_TRUE(std::equal(oldSdt.begin(), oldSdt.begin() + 12, newSdt.begin()));
    EXPECT_TRUE(std::equal(oldSdt.begin() + 24, oldSdt.end(), newSdt.begin() + 24));
    EXPECT_EQ(tb::getI32(newSdt, 12), static_cast<std::int32_t>(oldRaw.size()));
    EXPECT_EQ(tb::readFile(backupPathOf(sdt())), oldSdt);
    EXPECT_EQ(tb::readFile(backupPathOf(raw())), oldRaw);
}

TEST_F(SoundImportFixture, StereoSixteenBitAndFlacAreMixedToOneUnsignedByte) {
    // Left and right frames: opposite halves cancel out, full scale clamps to 255.
    const std::vector<short> stereo = {16384, -16384, 32767, 32767, -32768, -32768, 256, 256};
    const std::vector<std::uint8_t> expected = {128, 255, 0, 129};
    for (int format : {SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_FLAC | SF_FORMAT_PCM_16}) {
        const fs::path file = dir / ((format & SF_FORMAT_FLAC) ? "in.flac" : "in.wav");
        writeRecording(file, format, 44100, 2, stereo);
        ASSERT_EQ(importKind(importSound(*session, platform, 3, file)), "done")
            << ::testing::PrintToString(platform.messageTexts());
        const fs::path back = dir / "back.wav";
        ASSERT_EQ(
            tb::runCli({"sound", style().string(), "3", "--exact", "-o", back.string()}).status, 0);
        EXPECT_EQ(wavData(back), expected) << file;
        EXPECT_EQ(tb::getI32(tb::readFile(back), 24), 44100);
    }
}

TEST_F(SoundImportFixture, UndoAndRedoRewriteTheRecordAndRefuseABankChangedSince) {
    const fs::path file = dir / "in.wav";
    writeRecording(file, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 8000, 1, {0, 1000, -1000});
    ASSERT_EQ(importKind(importSound(*session, platform, 1, file)), "done");
    const auto importedSdt = tb::readFile(sdt());
    const auto importedRaw = tb::readFile(raw());
    EXPECT_EQ(session->soundHistory.undoName(), "Replace Sound 1");

    ASSERT_TRUE(undoSoundImport(*session, platform));
    EXPECT_EQ(tb::readFile(sdt()), oldSdt); // the old record points at the old samples again
    EXPECT_EQ(tb::readFile(raw()), importedRaw);
    EXPECT_FALSE(session->soundHistory.canUndo());
    ASSERT_TRUE(redoSoundImport(*session, platform));
    EXPECT_EQ(tb::readFile(sdt()), importedSdt);

    // Another program rewrote the record: undo says so and writes nothing.
    auto changed = importedSdt;
    tb::putI32(changed, 8, 12345);
    tb::writeFile(sdt(), changed);
    platform.shownMessages.clear();
    EXPECT_FALSE(undoSoundImport(*session, platform));
    EXPECT_EQ(tb::readFile(sdt()), changed);
    ASSERT_EQ(platform.messageTexts().size(), 1u);
    EXPECT_TRUE(tb::contains(platform.messageTexts()[0], "was changed since"));
}

TEST_F(SoundImportFixture, RefusalsAndFailedWritesLeaveTheWholeBankAsItWas) {
    const fs::path file = dir / "in.wav";
    writeRecording(file, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 8000, 1, {0, 1000, -1000});
    struct Case {
        int number;
        fs::path file;
        std::string outcome;
        std::string said;
    };
    tb::writeFile(dir / "notes.txt", {'h', 'i'});
    const Case cases[] = {
        {0, file, "out of range",
         "Sound is out of range.\rLEVEL001.SDT holds sounds 1 to 3; sound 0 is the table's empty "
         "record."},
        {4, file, "out of range", "Sound is out of range."},
        {2, dir / "notes.txt", "failed", "could not be read as a sound"},
        {2, dir / "missing.wav", "failed", "could not be read as a sound"},
    };
    for (const Case& c : cases) {
        platform.shownMessages.clear();
        const SoundResult imported = importSound(*session, platform, c.number, c.file);
        EXPECT_EQ(importKind(imported), c.outcome) << c.said;
        ASSERT_EQ(platform.messageTexts().size(), 1u) << c.said;
        EXPECT_TRUE(tb::contains(platform.messageTexts()[0], c.said)) << platform.messageTexts()[0];
        // The refusal carries the words it showed.
        EXPECT_EQ(imported.message(), platform.messageTexts()[0]) << c.said;
        EXPECT_TRUE(bankUnchanged()) << c.said;
    }
    EXPECT_FALSE(fs::exists(backupPathOf(raw())));

    // A failure at each step of the pair's replace: both files stay as they were.
    for (const char* failAt : {"create", "write", "flush", "rename"}) {
        setReplaceFaultHook([&](std::string_view step, const fs::path& target) {
            return step == failAt && target == sdt() ? std::make_error_code(std::errc::io_error)
                                                     : std::error_code{};
        });
        platform.shownMessages.clear();
        EXPECT_EQ(importKind(importSound(*session, platform, 2, file)), "failed") << failAt;
        setReplaceFaultHook({});
        EXPECT_TRUE(bankUnchanged()) << failAt;
        ASSERT_FALSE(platform.messageTexts().empty()) << failAt;
        EXPECT_TRUE(tb::contains(platform.messageTexts()[0], "could not be saved")) << failAt;
    }

    // Cut between the two renames (the RAW first): the pair is rolled back, or at worst the new
    // RAW stays with the old table, which still plays the old bank (its new samples unused).
    int sdtRenames = 0;
    setReplaceFaultHook([&](std::string_view step, const fs::path& target) {
        return step == "rename" && target == sdt() && ++sdtRenames == 2
                   ? std::make_error_code(std::errc::io_error)
                   : std::error_code{};
    });
    EXPECT_EQ(importKind(importSound(*session, platform, 2, file)), "failed");
    setReplaceFaultHook({});
    EXPECT_EQ(tb::readFile(sdt()), oldSdt);
    const auto grown = tb::readFile(raw());
    ASSERT_TRUE(grown.size() == oldRaw.size() || grown.size() == oldRaw.size() + 3);
    EXPECT_TRUE(std::equal(oldRaw.begin(), oldRaw.end(), grown.begin()));
    EXPECT_TRUE(grown.size() == oldRaw.size()
                    ? tb::contains(platform.messageTexts().back(), "both files are as they were")
                    : tb::contains(platform.messageTexts().back(), "the bank plays as before"));

    // A RAW whose end lies beyond what a 32-bit offset reaches (sparse, no disk used).
    fs::resize_file(raw(), 0x7FFFFFFE);
    platform.shownMessages.clear();
    EXPECT_EQ(importKind(importSound(*session, platform, 2, file)), "failed");
    EXPECT_TRUE(tb::contains(platform.messageTexts().at(0), "32-bit offsets"));
    EXPECT_EQ(fs::file_size(raw()), 0x7FFFFFFEu);
    EXPECT_EQ(tb::readFile(sdt()), oldSdt);
}
#endif

TEST_F(SoundImportFixture, WithoutLibsndfileImportIsOffAndSaysSo) {
    if (soundFilesSupported()) {
        // The reason is only given by a build without it.
        EXPECT_TRUE(soundFilesOffReason().empty());
        return;
    }
    const auto run = tb::runCli({"sound-import", style().string(), "2", (dir / "x.wav").string()});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(tb::contains(run.err, "built without libsndfile")) << run.err;
    EXPECT_TRUE(bankUnchanged());
}

TEST(SoundSamples, RecordingLevelsBecomeUnsignedBytesAroundOneHundredTwentyEight) {
    EXPECT_EQ(toBankSample(0.0), 128);
    EXPECT_EQ(toBankSample(-1.0), 0);
    EXPECT_EQ(toBankSample(1.0), 255); // one step above the top, clamped
    EXPECT_EQ(toBankSample(-2.0), 0);
    EXPECT_EQ(toBankSample(127.0 / 128.0), 255);
    EXPECT_EQ(toBankSample(0.5), 192);
}

} // namespace
