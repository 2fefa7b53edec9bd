#pragma once
// Replacing a user's file so that nothing can leave it half written: the complete new file is
// written beside the old one under a name of its own, flushed to the disk, given the old file's
// permissions, and then takes the old file's place in one rename. At every moment the name holds
// the old file or the new one. A file that may not be written (no write permission for anyone,
// or for this user) is refused and left alone.

#include "base/cause_advice.h"
#include "base/result.h"

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

// What a failed replace tells the user: which file ("Cannot write FILE" as its message), and the
// cause the system gave (in words as its cause, and as `code`).
struct ReplaceFailure : Failure {
    std::filesystem::path file;
    std::error_code code;
    // Files of the list that hold their new content after the failure: 0 unless the old content
    // of a file already replaced could not be put back (the next run then finishes the replace).
    std::size_t replaced = 0;
    // The step that failed ("create", "write", "owner", "flush", "rename", "journal"), for the
    // cause's words: an owner that cannot be kept is no lack of space.
    std::string_view step;
};
using ReplaceResult = Result<void, ReplaceFailure>;

// The file a replace of `target` writes: a symbolic link is followed to the file it names, so the
// link stays a link and its target takes the new content.
[[nodiscard]] std::filesystem::path replacedFileOf(const std::filesystem::path& target);

// Writes `bytes` as the new content of `target` (created when missing).
[[nodiscard]] ReplaceResult replaceFileAtomically(const std::filesystem::path& target,
                                                  std::span<const std::uint8_t> bytes);

// Copies the whole of `source` to `target` through a replace, so `target` never exists half
// written. The cause is "no such file or directory" when `source` is missing, an input/output
// error when it cannot be read.
[[nodiscard]] ReplaceResult copyFileAtomically(const std::filesystem::path& source,
                                               const std::filesystem::path& target);

// Several files replaced together, both or neither: every new file is complete and on the disk,
// each old file has a second name (".~old", a hard link) and a journal (".~pair") lists them all
// before the first rename. A rename that fails puts the old files back; a crash between two
// renames is finished by recoverInterruptedSaves. A replaced file keeps its mode, owner and
// group; when its owner cannot be kept the replace fails at "owner".
[[nodiscard]] ReplaceResult replaceFilesAtomically(std::span<const FileContent> files);

// Success when `target` does not exist or may be replaced; a file without write permission fails
// at "create" with the system's cause.
[[nodiscard]] ReplaceResult checkWritable(const std::filesystem::path& target);

// Side files of a replace: name + ".~new" + a tag of the run while it is written, ".~done" + the
// tag once it is complete and on the disk, just before it takes the name. A replace of several
// files shares one tag; it adds name + ".~old" + tag (the old file's second name) and one journal
// per folder, the folder's first file's name + ".~pair" + tag, listing every file of the replace.
inline constexpr std::string_view kPendingMarker = ".~new";
inline constexpr std::string_view kCompleteMarker = ".~done";
inline constexpr std::string_view kOldMarker = ".~old";
inline constexpr std::string_view kJournalMarker = ".~pair";
// Side files left beside `target` (and beside its ".bak") by replaces that were interrupted.
[[nodiscard]] std::vector<std::filesystem::path>
findInterruptedSaves(const std::filesystem::path& target);

// Finishes or rolls back the replaces of `target` that were cut short, and removes their side
// files; returns one sentence per replace found, saying what it was and what was done. A replace
// whose renames had begun (or whose journals were all written) is finished, so every file of it
// holds its new content; one that had not is rolled back, so every file holds its old content.
// The caller holds the lock of every file the replaces name (see recoverFiles in
// file_transaction.h, which takes them).
[[nodiscard]] std::vector<std::string> recoverInterruptedSaves(const std::filesystem::path& target);
// The other files that the interrupted replaces of `target` name in their journals.
[[nodiscard]] std::vector<std::filesystem::path>
filesOfInterruptedSaves(const std::filesystem::path& target);

// For tests: called before each system step of a replace with the step ("create", "write",
// "flush", "rename", "journal") and the target. A hook may end the process there, or return an
// error that the step then fails with.
using ReplaceFaultHook =
    std::function<std::error_code(std::string_view step, const std::filesystem::path& target)>;
void setReplaceFaultHook(ReplaceFaultHook hook);

} // namespace torquil
