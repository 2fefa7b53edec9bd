#pragma once
// Car packs of the open level: where their files are, the originals a pack is built against, and
// the one applier of a pack, used by the window and the command line alike: it refuses what
// would lose a modder's work (another level, a damaged pack, bytes changed since the pack was
// made, results the editor could not open) and replaces only the files the pack changes.

#include "base/app_options.h"
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
[[nodiscard]] CarPackFiles levelFiles(const StyleFileState& style);
// The ".bak" copies of the level's files that the save keeps; an empty path where there is none.
[[nodiscard]] CarPackFiles levelBackups(const StyleFileState& style);

// A pack as read from its file: its runs, and the trailer and unmodified bytes of packs written
// here.
struct CarPackFile {
    Gc3Pack pack;
    std::optional<Gc3Trailer> trailer;
    std::optional<Gc3Originals> originals;
};
// Reads and parses a pack; "Error reading GC3 file." (and the reason on the next line) when it is
// missing or damaged.
[[nodiscard]] bool readCarPack(const std::filesystem::path& pack, CarPackFile& out,
                               Platform& platform);

// Writes a pack (writeGC3) whose results have passed the editor's own open checks.
[[nodiscard]] bool writeCarPack(const std::filesystem::path& modStyle,
                                const std::filesystem::path& origStyle,
                                const std::filesystem::path& modFxt,
                                const std::filesystem::path& origFxt,
                                const std::filesystem::path& pack, Platform& platform);

// What applying a pack to the files would give, with nothing written: the files as they are and
// as they would be.
struct CarPackPlan {
    std::vector<std::uint8_t> styleBefore, fxtBefore, styleAfter, fxtAfter;
    bool styleChanged = false, fxtChanged = false;
    // The pack with its style runs where they fall in the files now, when it followed sections
    // that moved since it was made.
    std::optional<Gc3Pack> placed;
    // The pack to tell the changes by: `placed` when there is one, else the pack itself.
    [[nodiscard]] const Gc3Pack& packAsPlaced(const Gc3Pack& pack) const {
        return placed ? *placed : pack;
    }
};

// Why a pack was not applied; nothing changed either way.
enum class CarPackRefusal {
    Refused, // the refusal was shown
    Failed   // reading or writing failed; the message was shown
};
struct CarPackFailure : Failure {
    CarPackRefusal refusal = CarPackRefusal::Failed;
    std::vector<std::string> conflicts; // "Zed (ASN 19): Max Speed", "car name 3", ...
};

// The plan of a pack applied to the files, or why it does not apply (Failed when a file could
// not be read), in words, each conflict on a line of its own and also in `conflicts`.
[[nodiscard]] Result<CarPackPlan, CarPackFailure> planCarPack(const CarPackFile& pack,
                                                              const CarPackFiles& files);
// An applied pack gives what was written and kept, in words for the user.
using CarPackApplied = Result<std::string, CarPackFailure>;

// Applies a pack to the files: holds the style file's and ENGLISH.FXT's locks, plans it as
// planCarPack does, keeps the ".bak" copies of the files it changes (made when there are none
// yet), then writes every changed file before any is replaced, all through commitFiles. A file
// the pack does not change is neither written nor backed up. A file with other hard links is
// split from them as `links` says. Every refusal or failure is shown as a message.
[[nodiscard]] CarPackApplied applyCarPack(const std::filesystem::path& pack,
                                          const CarPackFiles& files, Platform& platform,
                                          BackupRegistry& backups,
                                          LinkPolicy links = LinkPolicy::Ask);

} // namespace torquil
