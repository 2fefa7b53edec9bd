#pragma once
// Cutting a style file's content to its new end after the delta store shrank. The save holds the
// content in memory and then writes the shorter file in one replace.

#include <cstdint>
#include <functional>
#include <string_view>

namespace torquil {

class BinaryFile;
class Platform;

// Called at named points of a save; a test may end the process there to play a crash.
using SaveCheckpoint = std::function<void(std::string_view point)>;

// Cuts the content held in memory (BinaryFile::openInMemory) so that it ends just before the
// 1-based position endPosition, with the "Shrinking STYLE file" progress form. Returns 0, or
// err::InvalidCall for a cut that would leave nothing.
[[nodiscard]] int shrinkStyleContent(BinaryFile& content, std::int64_t endPosition,
                                     Platform& platform);

} // namespace torquil
