#pragma once
// Sound preview: one sample of the level's sound bank wrapped in a WAV file (8-bit mono PCM) at a
// chosen rate and repeat count, played synchronously.

#include "base/result.h"
#include "sound/sound_bank.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>

namespace torquil {

class ErrorState;
class Platform;
struct FormatContext;
struct StyleFileState;

inline constexpr int kWavHeaderSize = 44;

// Limits of a preview, checked before anything is written: the repeat count, the rate
// multiplier, the WAV's resulting sample rate and the size of its data.
inline constexpr int kMaxRepeatCount = 100;
inline constexpr double kMinRateMultiplier = 0.01, kMaxRateMultiplier = 100.0;
inline constexpr std::int64_t kMinWavRate = 1, kMaxWavRate = 1'000'000;
inline constexpr std::int64_t kMaxWavData = 64LL * 1024 * 1024;

// How a record's bytes are cut out of the RAW file. The preview starts one byte before the
// recorded offset (a record at offset 0 cannot be previewed); the game reads the record itself.
enum class SoundReading { Preview, AsStored };

// The 44-byte WAV header for `repeatCount` copies of a record. The RIFF chunk size is the
// record's length + 36 whatever the repeat count. Raises "Overflow" when a field does not fit.
[[nodiscard]] std::array<std::uint8_t, kWavHeaderSize>
wavHeader(ErrorState& errors, const SdtRecord& record, double rateMultiplier, int repeatCount);

// Writes the WAV that playSound plays for `soundNumber` to `wav`, without playing it (AsStored:
// the record's own bytes, as the game reads them). The record is checked against the RAW file's
// length and the limits before anything is written; the sample is then read from the RAW a piece
// at a time into one replace, so a bank of any size costs little memory and a failed WAV never
// stays on the disk. A missing bank says nothing (NoBank); a failure of a run-time error (a
// record outside the RAW file, an unwritable file) is Failed.
[[nodiscard]] SoundResult writeSoundWav(const StyleFileState& style, FormatContext& ctx,
                                        std::int16_t soundNumber, double rateMultiplier,
                                        std::int16_t repeatCount, const std::filesystem::path& wav,
                                        SoundReading reading = SoundReading::Preview);

// Whether record `soundNumber` can be cut out of a RAW file of `rawSize` bytes; the failure's
// message says why not in words for the user (the run-time error "Bad record number" then).
[[nodiscard]] Result<void> checkRecord(const SoundTable& table, int soundNumber,
                                       std::int64_t rawSize, SoundReading reading);

// Plays sound `soundNumber` of the bank: the table is read afresh, the WAV goes to
// "~tmp" + number + ".wav" in a folder of the run's own in the work directory, is played to its end
// and deleted. A run-time error is reported as the general error message (in debug mode it escapes
// as RuntimeError).
[[nodiscard]] SoundResult playSound(const StyleFileState& style, FormatContext& ctx,
                                    std::int16_t soundNumber, double rateMultiplier,
                                    std::int16_t repeatCount);

} // namespace torquil
