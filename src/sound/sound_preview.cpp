#include "sound/sound_preview.h"

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "platform/format_context.h"
#include "platform/platform.h"
#include "style/style_file.h"

#include <cmath>
#include <limits>
#include <string>

namespace torquil {

namespace fs = std::filesystem;

namespace {

std::int32_t fitInt32(ErrorState& errors, double value, const char* what) {
    if (!std::isfinite(value) || value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max()) {
        errors.raise(err::Overflow, what);
        return 0;
    }
    return static_cast<std::int32_t>(value);
}

void putTag(std::uint8_t* p, const char* tag) {
    for (int i = 0; i < 4; ++i) p[i] = static_cast<std::uint8_t>(tag[i]);
}

SoundResult checkNumber(const StyleFileState& style, Platform& platform, std::int16_t soundNumber,
                        SoundTable& table, SoundReading reading) {
    if (!loadSDT(style, table))
        return soundFailure(SoundRefusal::NoBank, "The sound bank's SDT or RAW file is missing.");
    // The preview can never play the table's last record; the game reads it.
    const int last = reading == SoundReading::Preview ? table.lastIndex() - 1 : table.lastIndex();
    if (soundNumber < 0 || soundNumber > last) {
        platform.message("Sound is out of range.");
        return soundFailure(SoundRefusal::OutOfRange, "Sound is out of range.");
    }
    return {};
}

// Whether a record can be previewed with these values, checked before anything is written; the
// failure's message says why not. (A record outside the RAW file is a run-time error, checked
// before this.)
Result<void> checkPreviewLimits(const SdtRecord& record, double rateMultiplier, int repeatCount,
                                std::int16_t soundNumber) {
    const std::string sound = "Sound " + std::to_string(soundNumber);
    if (repeatCount < 1 || repeatCount > kMaxRepeatCount)
        return fail(sound + ": the repeat count must be 1 to " + std::to_string(kMaxRepeatCount) +
                    ".");
    if (!(rateMultiplier >= kMinRateMultiplier && rateMultiplier <= kMaxRateMultiplier))
        return fail(sound + ": the rate multiplier must be 0.01 to 100.");
    const double rate = std::nearbyint(static_cast<double>(record.rate) * rateMultiplier);
    if (!(rate >= kMinWavRate && rate <= kMaxWavRate))
        return fail(sound + ": its rate " + std::to_string(record.rate) + " x " +
                    std::to_string(rateMultiplier) +
                    " is outside 1 to 1000000 samples per second.");
    if (std::int64_t{record.length} * repeatCount > kMaxWavData)
        return fail(sound + " repeated " + std::to_string(repeatCount) +
                    " times would be more than 64 MB of sound.");
    return {};
}

enum class WavWrite { Written, Refused, Failed };

// Expects no pending error (the callers start a fresh scope). On Failed, `cause` says why in the
// user's words; on Refused it is the message shown.
WavWrite writeWavFile(ErrorState& errors, Platform& platform, const SoundTable& table,
                      std::int16_t soundNumber, double rateMultiplier, std::int16_t repeatCount,
                      const fs::path& path, SoundReading reading, std::string& cause) {
    const SdtRecord& record = table.SDT[static_cast<std::size_t>(soundNumber)];
    std::error_code sized;
    const auto rawSize = static_cast<std::int64_t>(fs::file_size(table.rawPath, sized));
    if (sized) {
        errors.raise(err::PathFileAccess, table.rawPath.string());
        cause = table.rawPath.string() + " could not be read: " + describeCause(sized) + ".";
        return WavWrite::Failed;
    }
    const auto header = wavHeader(errors, record, rateMultiplier, repeatCount);
    if (errors.hasPending()) return WavWrite::Failed;
    if (const Result<void> readable = checkRecord(table, soundNumber, rawSize, reading);
        !readable) {
        cause = readable.message();
        errors.raise(err::BadRecordNumber, cause);
        return WavWrite::Failed;
    }
    if (const Result<void> limits =
            checkPreviewLimits(record, rateMultiplier, repeatCount, soundNumber);
        !limits) {
        cause = limits.message();
        platform.message(cause);
        return WavWrite::Refused;
    }

    // The preview copies from the 1-based position `offset`, one byte before the record.
    const std::int64_t first = reading == SoundReading::Preview ? record.offset - 1 : record.offset;
    FileContent wav{path, {}};
    wav.source = [&](const ContentWriter& write) -> std::error_code {
        if (auto ec = write(header)) return ec;
        for (int i = 0; i < repeatCount; ++i)
            if (auto ec = copyRawRange(table.rawPath, first, record.length, write)) return ec;
        return {};
    };
    if (const ReplaceResult written = replaceFilesAtomically(std::span(&wav, 1)); !written) {
        cause = "The sound could not be written to " + path.string() + ": " +
                written.error().cause + ".";
        platform.message(cause);
        return WavWrite::Refused;
    }
    return WavWrite::Written;
}

// The specified text, then the cause on a line of its own.
// The failure carries the words shown.
SoundFailure reportGeneralError(const ErrorState& errors, Platform& platform,
                                const std::string& cause) {
    std::string text = "Run-time error '" + std::to_string(errors.pending()) + "':\r" +
                       errorDescription(errors.pending());
    if (!cause.empty()) text += "\r" + cause;
    platform.message(text);
    return soundFailure(SoundRefusal::Failed, std::move(text));
}

// Removes the temporary WAV on every way out, an exception included.
class TemporaryFile {
public:
    explicit TemporaryFile(fs::path path) : path_(std::move(path)) {}
    ~TemporaryFile() {
        std::error_code ec;
        fs::remove(path_, ec);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

private:
    fs::path path_;
};

} // namespace

std::array<std::uint8_t, kWavHeaderSize> wavHeader(ErrorState& errors, const SdtRecord& record,
                                                   double rateMultiplier, int repeatCount) {
    std::array<std::uint8_t, kWavHeaderSize> h{};
    // Rounded to the nearest whole rate, ties to the even number.
    const std::int32_t rate = fitInt32(
        errors, std::nearbyint(static_cast<double>(record.rate) * rateMultiplier), "sample rate");
    const std::int32_t dataSize = fitInt32(
        errors, static_cast<double>(record.length) * static_cast<double>(repeatCount), "data size");
    // The chunk size counts one copy of the sample only; players go by the data size.
    const std::int32_t chunkSize =
        fitInt32(errors, static_cast<double>(record.length) + 36.0, "chunk size");
    putTag(&h[0], "RIFF");
    putI32(&h[4], chunkSize);
    putTag(&h[8], "WAVE");
    putTag(&h[12], "fmt ");
    putI32(&h[16], 16);
    putI16(&h[20], 1);
    putI16(&h[22], 1);
    putI32(&h[24], rate);
    putI32(&h[28], rate);
    putI16(&h[32], 1);
    putI16(&h[34], 8);
    putTag(&h[36], "data");
    putI32(&h[40], dataSize);
    return h;
}

Result<void> checkRecord(const SoundTable& table, int soundNumber, std::int64_t rawSize,
                         SoundReading reading) {
    const SdtRecord& record = table.SDT.at(static_cast<std::size_t>(soundNumber));
    const std::string sound = "Sound " + std::to_string(soundNumber);
    const std::string raw = table.rawPath.filename().string();
    if (soundNumber == 0)
        return fail("Sound 0 is the table's empty record, placed before the first record of " +
                    table.sdtPath.filename().string() +
                    ": it holds no sound. The bank's sounds are numbered from 1.");
    if (record.offset < 0 || record.length < 0)
        return fail(sound + " has a negative offset (" + std::to_string(record.offset) +
                    ") or length (" + std::to_string(record.length) + ") in " +
                    table.sdtPath.filename().string() + ".");
    // The preview's one-byte shift: it starts one byte before the record, so a record at the
    // file's first byte has no byte to start from.
    const std::int64_t first = reading == SoundReading::Preview ? record.offset - 1 : record.offset;
    if (first < 0)
        return fail(
            sound + " starts at the first byte of " + raw +
            ": the preview reads a sound from one byte before its recorded start, and there "
            "is no byte before the file's first. The game plays it; torquil-cli sound with "
            "--exact writes it as the game reads it.");
    if (first + record.length > rawSize)
        return fail(sound + " (offset " + std::to_string(record.offset) + ", length " +
                    std::to_string(record.length) + ") reaches past the end of " + raw + " (" +
                    std::to_string(rawSize) +
                    " bytes): the bank's two files do not belong together.");
    return {};
}

SoundResult writeSoundWav(const StyleFileState& style, FormatContext& ctx, std::int16_t soundNumber,
                          double rateMultiplier, std::int16_t repeatCount, const fs::path& wav,
                          SoundReading reading) {
    Platform& platform = ctx.platform;
    BusyCursor busy(platform);
    SoundTable table;
    if (SoundResult checked = checkNumber(style, platform, soundNumber, table, reading); !checked)
        return checked;
    const PendingErrorScope fresh(ctx.errors);
    std::string cause;
    switch (writeWavFile(ctx.errors, platform, table, soundNumber, rateMultiplier, repeatCount, wav,
                         reading, cause)) {
    case WavWrite::Written:
        return {};
    case WavWrite::Refused:
        return soundFailure(SoundRefusal::Failed, cause);
    case WavWrite::Failed:
        break;
    }
    return reportGeneralError(ctx.errors, platform, cause);
}

SoundResult playSound(const StyleFileState& style, FormatContext& ctx, std::int16_t soundNumber,
                      double rateMultiplier, std::int16_t repeatCount) {
    Platform& platform = ctx.platform;
    BusyCursor busy(platform);
    SoundTable table;
    if (SoundResult checked =
            checkNumber(style, platform, soundNumber, table, SoundReading::Preview);
        !checked)
        return checked;
    // A folder of this run's own, so two runs playing the same sound never share the file.
    const fs::path folder = ctx.options.workPath("~run" + std::to_string(processId()));
    std::error_code made;
    fs::create_directories(folder, made);
    const fs::path wav = folder / ("~tmp" + std::to_string(soundNumber) + ".wav");
    TemporaryFile cleanupFolder(folder), cleanup(wav); // the file goes first, then its folder
    const PendingErrorScope fresh(ctx.errors);
    std::string cause;
    switch (writeWavFile(ctx.errors, platform, table, soundNumber, rateMultiplier, repeatCount, wav,
                         SoundReading::Preview, cause)) {
    case WavWrite::Written:
        break;
    case WavWrite::Refused:
        return soundFailure(SoundRefusal::Failed, cause);
    case WavWrite::Failed:
        return reportGeneralError(ctx.errors, platform, cause);
    }
    // A sound the system cannot play is no error of the bank: it was written and handed over.
    (void)platform.sound().playWavSync(wav);
    return {};
}

} // namespace torquil
