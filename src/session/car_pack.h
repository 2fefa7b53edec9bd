#pragma once
// Car packs of the open level: where their files are, the originals a pack is built against, and
// applying a pack with the refusals that keep a modder's files safe (another level, a damaged
// pack, files that do not fit it, a pack already applied).

#include "exchange/gc3.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace torquil {

class BackupRegistry;
class Platform;
struct StyleFileState;

// The two files a pack of the open level reads or changes.
struct CarPackFiles {
    std::filesystem::path style, fxt;
};
// The open style file and the ENGLISH.FXT beside it (found ignoring case).
CarPackFiles levelFiles(const StyleFileState& style);
// The ".bak" copies of the level's files that the save keeps; an empty path where there is none.
CarPackFiles levelBackups(const StyleFileState& style);

// Reads and parses a pack, and its trailer when it has one; "Error reading GC3 file." (and the
// reason in the details) when it is missing or damaged.
bool readCarPack(const std::filesystem::path& pack, Gc3Pack& out, Platform& platform,
                 std::optional<Gc3Trailer>* trailer = nullptr);

// Why `pack` cannot be applied to the files `files` (whose bytes are given): empty when it can.
// Another level is named with the levels' names; the files are then judged as the GC3 applier
// judges them (by the trailer's checksums when the pack has one), and a pack without a trailer
// whose changes the files already hold is refused as already applied.
std::string carPackRefusal(const Gc3Pack& pack, const std::optional<Gc3Trailer>& trailer,
                           const CarPackFiles& files, const std::vector<std::uint8_t>& style,
                           const std::vector<std::uint8_t>& fxt);

enum class ApplyResult {
    Applied,
    Refused, // the refusal was shown; nothing changed
    Failed   // reading or writing failed; the message was shown; nothing changed
};

// Applies a pack to the files through the GC3 applier: refuses as carPackRefusal says, keeps the
// ".bak" copies (made when there are none yet), then writes both results before either file is
// replaced. Every refusal or failure, the applier's included, is shown as a message.
ApplyResult applyCarPack(const std::filesystem::path& pack, const CarPackFiles& files,
                         Platform& platform, BackupRegistry& backups);

} // namespace torquil
