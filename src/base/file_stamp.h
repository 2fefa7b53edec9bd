#pragma once
// What a file on disk looks like at one moment: its length, its last write time and which file
// it is (a replace by rename, ours or another program's, gives the name another file even when
// length and time look the same). Used to notice a change made behind the editor's back.

#include <cstdint>
#include <filesystem>

namespace torquil {

struct FileStamp {
    bool exists = false;
    std::int64_t length = -1;
    std::filesystem::file_time_type written{};
    std::uint64_t volume = 0, identity = 0; // device and inode, or volume serial and file index

    bool operator==(const FileStamp&) const = default;
};

// The stamp of the file now; `exists` is false when it cannot be read.
[[nodiscard]] FileStamp stampOf(const std::filesystem::path& path);

} // namespace torquil
