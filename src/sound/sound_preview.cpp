#include "sound/sound_preview.h"

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

constexpr std::int64_t kCopyBlock = 1024;

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

// Copies the record's sample once. The sample is read from the 1-based position `offset`, so
// the first byte copied is the one just before the recorded start: the bank's records are read
// that way by the preview, and an offset of 0 is refused as a bad record number.
void copySample(BinaryFile& raw, BinaryFile& wav, const SdtRecord& record) {
    raw.seek(record.offset);
    std::int64_t left = record.length;
    std::uint8_t block[kCopyBlock];
    while (left > kCopyBlock) {
        raw.read(block);
        wav.write(block);
        left -= kCopyBlock;
    }
    for (; left > 0; --left) wav.writeU8(raw.readU8());
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

// Expects no pending error (the callers start a fresh scope).
bool writeWavFile(ErrorState& errors, const SoundTable& table, std::int16_t soundNumber,
                  double rateMultiplier, std::int16_t repeatCount, const fs::path& path) {
    const SdtRecord& record = table.SDT[static_cast<std::size_t>(soundNumber)];
    const auto header = wavHeader(errors, record, rateMultiplier, repeatCount);
    if (errors.hasPending()) return false;

    BinaryFile raw(errors);
    if (!raw.open(table.rawPath, BinaryFile::Mode::Read)) return false;
    // With the one-byte shift the last byte copied is at 0-based offset + length - 2.
    if (record.length < 0 ||
        (record.length > 0 && std::int64_t{record.offset} + record.length - 1 > raw.length())) {
        errors.raise(err::BadRecordNumber, "sound " + std::to_string(soundNumber) +
                                               " lies past the end of " + table.rawPath.string());
        return false;
    }
    BinaryFile wav(errors);
    if (!wav.open(path, BinaryFile::Mode::Create)) return false;
    wav.write(header);
    for (int i = 0; i < repeatCount && !errors.hasPending(); ++i) copySample(raw, wav, record);
    wav.flush();
    return !errors.hasPending();
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
    if (!writeWavFile(ctx.errors, table, soundNumber, rateMultiplier, repeatCount, wav)) {
        reportGeneralError(ctx.errors, platform);
        return SoundOutcome::Failed;
    }
    return SoundOutcome::Done;
}

SoundOutcome playSound(const StyleFileState& style, FormatContext& ctx, std::int16_t soundNumber,
                       double rateMultiplier, std::int16_t repeatCount) {
    Platform& platform = ctx.platform;
    BusyCursor busy(platform);
    SoundTable table;
    const SoundOutcome checked = checkNumber(style, platform, soundNumber, table);
    if (checked != SoundOutcome::Done) return checked;
    const fs::path wav = ctx.options.workPath("~tmp" + std::to_string(soundNumber) + ".wav");
    TemporaryFile cleanup(wav);
    const PendingErrorScope fresh(ctx.errors);
    if (!writeWavFile(ctx.errors, table, soundNumber, rateMultiplier, repeatCount, wav)) {
        reportGeneralError(ctx.errors, platform);
        return SoundOutcome::Failed;
    }
    platform.sound().playWavSync(wav);
    return SoundOutcome::Done;
}

} // namespace torquil
