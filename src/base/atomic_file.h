#pragma once
// Replacing a user's file so that nothing can leave it half written: the complete new file is
// written beside the old one under a name of its own, flushed to the disk, given the old file's
// permissions, and then takes the old file's place in one rename. At every moment the name holds
// the old file or the new one. A file that may not be written (no write permission for anyone,
// or for this user) is refused and left alone.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace torquil {

// This process's id: it names the side files and temporaries of one run.
[[nodiscard]] std::uint64_t processId();

// Hands one piece of a new file's content to the replace; a failed write's cause comes back.
using ContentWriter = std::function<std::error_code(std::span<const std::uint8_t>)>;
// Produces a new file's content piece by piece (a file too large to hold in memory): calls the
// writer with each piece in order and returns the first error, its own or the writer's.
using ContentSource = std::function<std::error_code(const ContentWriter&)>;

// One file of a replace: where it goes and its complete new content, given whole (`bytes`) or,
// when `source` is set, piece by piece.
struct FileContent {
    std::filesystem::path target;
    std::span<const std::uint8_t> bytes;
    ContentSource source = {};
};

// What a failed replace tells the user: which file, and the cause the system gave.
struct ReplaceFailure {
    std::filesystem::path file;
    std::error_code cause;
    std::size_t replaced = 0; // files of the list that had already taken their new content
    explicit operator bool() const { return static_cast<bool>(cause); }
};

// Writes `bytes` as the new content of `target` (created when missing). Empty failure on success.
ReplaceFailure replaceFileAtomically(const std::filesystem::path& target,
                                     std::span<const std::uint8_t> bytes);

// Copies the whole of `source` to `target` through a replace, so `target` never exists half
// written. The cause is "no such file or directory" when `source` is missing, an input/output
// error when it cannot be read.
ReplaceFailure copyFileAtomically(const std::filesystem::path& source,
                                  const std::filesystem::path& target);

// Several files replaced together: every new file is complete and on the disk before the first
// old one is replaced. A crash between two renames leaves the later files' new content beside
// them (see findInterruptedSaves).
ReplaceFailure replaceFilesAtomically(std::span<const FileContent> files);

// Whether the file exists and may not be replaced (no write permission); ec holds the cause.
bool isWriteProtected(const std::filesystem::path& target, std::error_code& ec);

// The cause in a few words: "permission denied", "disk full", "file in use", "read-only file
// system", else the system's own text.
std::string describeCause(const std::error_code& cause);

// Side files of a replace: name + ".~new" + a tag of the run while it is written, ".~done" + the
// tag once it is complete and on the disk, just before it takes the name.
inline constexpr std::string_view kPendingMarker = ".~new";
inline constexpr std::string_view kCompleteMarker = ".~done";
// Side files left beside `target` by replaces that were interrupted.
std::vector<std::filesystem::path> findInterruptedSaves(const std::filesystem::path& target);
// The message that names a leftover side file and says what to do with it.
std::string interruptedSaveMessage(const std::filesystem::path& leftover,
                                   const std::filesystem::path& target);

// For tests: called before each system step of a replace with the step ("create", "write",
// "flush", "rename") and the target. A hook may end the process there, or return an error that
// the step then fails with.
using ReplaceFaultHook =
    std::function<std::error_code(std::string_view step, const std::filesystem::path& target)>;
void setReplaceFaultHook(ReplaceFaultHook hook);

} // namespace torquil
