#pragma once
// How long a PCM WAV file plays, read from its "fmt " and "data" chunks.

#include <cstdint>
#include <filesystem>
#include <optional>

namespace torquil {

// Milliseconds of sound, or nothing when the file is not a readable RIFF WAVE file.
[[nodiscard]] std::optional<std::int64_t> wavDurationMs(const std::filesystem::path& wav);

} // namespace torquil
