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

SoundOutcome checkNumber(const StyleFileState& style, Platform& platform, std::int16_t soundNumber,
                         SoundTable& table) {
    if (!loadSDT(style, table)) return SoundOutcome::NoBank;
    // The table's last record can never be played.
    if (soundNumber < 0 || soundNumber > table.lastIndex() - 1) {
        platform.message("Sound is out of range.");
        return SoundOutcome::OutOfRange;
    }
    return SoundOutcome::Done;
}

// Why a record cannot be previewed with these values, checked before anything is written; empty
// when it can. (A record outside the RAW file is a run-time error, checked before this.)
std::string previewLimitProblem(const SdtRecord& record, double rateMultiplier, int repeatCount,
                                std::int16_t soundNumber) {
    const std::string sound = "Sound " + std::to_string(soundNumber);
    if (repeatCount < 1 || repeatCount > kMaxRepeatCount)
        return sound + ": the repeat count must be 1 to " + std::to_string(kMaxRepeatCount) + ".";
    if (!(rateMultiplier >= kMinRateMultiplier && rateMultiplier <= kMaxRateMultiplier))
        return sound + ": the rate multiplier must be 0.01 to 100.";
    const double rate = std::nearbyint(static_cast<double>(record.rate) * rateMultiplier);
    if (!(rate >= kMinWavRate && rate <= kMaxWavRate))
        return sound + ": its rate " + std::to_string(record.rate) + " x " +
               std::to_string(rateMultiplier) + " is outside 1 to 1000000 samples per second.";
    if (std::int64_t{record.length} * repeatCount > kMaxWavData)
        return sound + " repeated " + std::to_string(repeatCount) +
               " times would be more than 64 MB of sound.";
    return {};
}

enum class WavWrite { Written, Refused, Failed };

// Expects no pending error (the callers start a fresh scope).
WavWrite writeWavFile(ErrorState& errors, Platform& platform, const SoundTable& table,
                      std::int16_t soundNumber, double rateMultiplier, std::int16_t repeatCount,
                      const fs::path& path) {
    const SdtRecord& record = table.SDT[static_cast<std::size_t>(soundNumber)];
    std::vector<std::uint8_t> raw;
    if (!readWholeFile(table.rawPath, raw)) {
        errors.raise(err::PathFileAccess, table.rawPath.string());
        return WavWrite::Failed;
    }
    const auto header = wavHeader(errors, record, rateMultiplier, repeatCount);
    if (errors.hasPending()) return WavWrite::Failed;
    // With the one-byte shift the first byte copied is at 0-based offset - 1 and the last at
    // offset + length - 2, so an offset of 0 is a bad record number.
    if (record.offset < 1 || record.length < 0 ||
        std::int64_t{record.offset} + record.length - 1 > static_cast<std::int64_t>(raw.size())) {
        errors.raise(err::BadRecordNumber, "sound " + std::to_string(soundNumber) +
                                               " lies outside " + table.rawPath.string());
        return WavWrite::Failed;
    }
    const std::string problem =
        previewLimitProblem(record, rateMultiplier, repeatCount, soundNumber);
    if (!problem.empty()) {
        platform.message(problem);
        return WavWrite::Refused;
    }

    // The sample is read from the 1-based position `offset`: the bank's records are read that
    // way by the preview.
    std::vector<std::uint8_t> wav(header.begin(), header.end());
    wav.reserve(wav.size() + static_cast<std::size_t>(record.length) * repeatCount);
    const auto first = raw.begin() + (record.offset - 1);
    for (int i = 0; i < repeatCount; ++i) wav.insert(wav.end(), first, first + record.length);
    if (const ReplaceFailure failure = replaceFileAtomically(path, wav)) {
        platform.message("The sound could not be written to " + path.string() + ": " +
                         describeCause(failure.cause) + ".");
        return WavWrite::Refused;
    }
    return WavWrite::Written;
}

void reportGeneralError(const ErrorState& errors, Platform& platform) {
    platform.message("Run-time error '" + std::to_string(errors.pending()) + "':\r" +
                     errorDescription(errors.pending()));
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

SoundOutcome writeSoundWav(const StyleFileState& style, FormatContext& ctx,
                           std::int16_t soundNumber, double rateMultiplier,
                           std::int16_t repeatCount, const fs::path& wav) {
    Platform& platform = ctx.platform;
    BusyCursor busy(platform);
    SoundTable table;
    const SoundOutcome checked = checkNumber(style, platform, soundNumber, table);
    if (checked != SoundOutcome::Done) return checked;
    const PendingErrorScope fresh(ctx.errors);
    switch (
        writeWavFile(ctx.errors, platform, table, soundNumber, rateMultiplier, repeatCount, wav)) {
    case WavWrite::Written:
        return SoundOutcome::Done;
    case WavWrite::Refused:
        return SoundOutcome::Failed;
    case WavWrite::Failed:
        break;
    }
    reportGeneralError(ctx.errors, platform);
    return SoundOutcome::Failed;
}

SoundOutcome playSound(const StyleFileState& style, FormatContext& ctx, std::int16_t soundNumber,
                       double rateMultiplier, std::int16_t repeatCount) {
    Platform& platform = ctx.platform;
    BusyCursor busy(platform);
    SoundTable table;
    const SoundOutcome checked = checkNumber(style, platform, soundNumber, table);
    if (checked != SoundOutcome::Done) return checked;
    // A folder of this run's own, so two runs playing the same sound never share the file.
    const fs::path folder = ctx.options.workPath("~run" + std::to_string(processId()));
    std::error_code made;
    fs::create_directories(folder, made);
    const fs::path wav = folder / ("~tmp" + std::to_string(soundNumber) + ".wav");
    TemporaryFile cleanupFolder(folder), cleanup(wav); // the file goes first, then its folder
    const PendingErrorScope fresh(ctx.errors);
    switch (
        writeWavFile(ctx.errors, platform, table, soundNumber, rateMultiplier, repeatCount, wav)) {
    case WavWrite::Written:
        break;
    case WavWrite::Refused:
        return SoundOutcome::Failed;
    case WavWrite::Failed:
        reportGeneralError(ctx.errors, platform);
        return SoundOutcome::Failed;
    }
    platform.sound().playWavSync(wav);
    return SoundOutcome::Done;
}

} // namespace torquil
