#pragma once
// Writing files so that a crash or a full disk never leaves a name without its file: new content
// goes to a side file first, reaches the disk, and then takes the old file's place in one step.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace torquil {

// Flushes an open C stream and asks the system to put its bytes on the disk.
bool flushToDisk(std::FILE* file);

// Puts `replacement` in the place of `target` in one step: at every moment the target's name
// holds the old file or the new one, never neither. `replacement` is gone afterwards.
bool replaceFile(const std::filesystem::path& replacement, const std::filesystem::path& target,
                 std::error_code& ec);

// Copies a whole file to `target` through `target` + ".part", so `target` never exists half
// written. An existing `target` is replaced.
bool copyFileSafely(const std::filesystem::path& source, const std::filesystem::path& target,
                    std::error_code& ec);

} // namespace torquil
