#pragma once
// Plays a WAV file to the end through the system: PlaySound on Windows, afplay on macOS,
// aplay elsewhere.

#include <filesystem>
#include <string>

namespace torquil {

// False, with the reason in `why`, when nothing could be played.
[[nodiscard]] bool playWavFileSync(const std::filesystem::path& wav, std::string& why);

} // namespace torquil
