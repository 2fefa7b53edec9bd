#pragma once
// Cutting a style file to its new end after the delta store shrank, through a copy named
// path + "~" that then takes the style file's place in one step.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>

namespace torquil {

class BinaryFile;
class Platform;

// Called at named points of a save; a test may end the process there to play a crash.
using SaveCheckpoint = std::function<void(std::string_view point)>;

// Cuts the file so that it ends just before the 1-based position endPosition. Returns 0, or the
// run-time error number when the copy or the replace failed (the style file then still holds its
// old bytes; after a failed replace the finished copy is left as path + "~").
int shrinkStyleFile(const std::filesystem::path& path, std::int64_t endPosition, Platform& platform,
                    const SaveCheckpoint& checkpoint = {});

// The same cut of a style file's content held in memory (BinaryFile::openInMemory), with the same
// progress form; the save then writes the shorter content in one replace.
int shrinkStyleContent(BinaryFile& content, std::int64_t endPosition, Platform& platform);

// path + "~": where the shorter copy is written.
std::filesystem::path shrinkCopyPath(const std::filesystem::path& path);

} // namespace torquil
