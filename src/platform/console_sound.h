#pragma once
// Plays a WAV file to the end through the system: PlaySound on Windows, afplay on macOS,
// aplay elsewhere.

#include "base/result.h"

#include <filesystem>

namespace torquil {

// Plays the WAV file to its end; the failure's message is the reason when nothing could be
// played.
[[nodiscard]] Result<void> playWavFileSync(const std::filesystem::path& wav);

} // namespace torquil
