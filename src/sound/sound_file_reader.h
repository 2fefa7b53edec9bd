#pragma once
// The recordings a modder brings to replace a sound of the bank (WAV, FLAC, Ogg: whatever
// libsndfile reads), turned into the bank's sample format: unsigned 8-bit mono. The recording's
// own rate is kept: the bank's record holds a rate of 32 bits, so no resampling is needed.
// Without libsndfile (TORQUIL_SNDFILE=OFF, the Windows cross-build) every file is refused with
// the reason.

#include "base/result.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace torquil {

// The longest recording taken: 16 M samples (over 6 minutes at 44100 per second), so an import
// never holds more than that in memory.
inline constexpr std::int64_t kMaxImportSamples = 16LL * 1024 * 1024;

struct DecodedSound {
    std::vector<std::uint8_t> samples; // unsigned 8-bit mono, 128 is silence
    std::int32_t rate = 0;             // samples per second
    int channels = 0;                  // of the recording (mixed down to one)
};

// Whether this build reads recordings at all; when not, why.
[[nodiscard]] bool soundFilesSupported();
[[nodiscard]] std::string soundFilesOffReason();

// Reads `file` whole and converts it. The failure's message is a sentence naming the file and
// the cause, when it cannot be read, holds no sound, or is too long.
[[nodiscard]] Result<DecodedSound> decodeSoundFile(const std::filesystem::path& file);

// One sample of a recording (-1.0 to 1.0) as the bank's unsigned 8-bit sample: 0.0 is 128; the
// ends are clamped to 0 and 255.
[[nodiscard]] inline std::uint8_t toBankSample(double value) {
    const long level = std::lround(value * 128.0) + 128;
    return static_cast<std::uint8_t>(std::clamp(level, 0L, 255L));
}

} // namespace torquil
