#pragma once
// A file's bytes kept in memory with the stamp that proves them: the file had that stamp just
// before and just after its one read, so while it still has the stamp it still holds the bytes.
// A command that loads a file and then saves it reads it once this way.

#include "base/file_stamp.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace torquil {

struct StampedContent {
    std::vector<std::uint8_t> bytes;
    FileStamp stamp; // stamp.exists is false while nothing is kept

    [[nodiscard]] bool kept() const { return stamp.exists; }
    // Moves the bytes into `out` and their stamp into `readAs` when the file at `path` still has
    // the stamp; false (and `out` untouched) when it does not or nothing is kept. Either way
    // nothing is kept afterwards: the caller changes the bytes.
    [[nodiscard]] bool takeIfUnchanged(const std::filesystem::path& path,
                                       std::vector<std::uint8_t>& out, FileStamp& readAs);
};

// Reads the file whole, in one read, into `out` with its stamp. False (and nothing kept) when the
// file cannot be read or changed while it was read.
[[nodiscard]] bool readStampedContent(const std::filesystem::path& path, StampedContent& out);

} // namespace torquil
