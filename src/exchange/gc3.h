#pragma once
// GC3 car packs: a user's changes to one level's style file and to ENGLISH.FXT as byte runs that
// differ from the original files. Layout (little-endian, positions 1-based):
//   header, 31 bytes: "GC3", ver (i16), encrypt (u8), stylenum (u8), then six i32: the first
//   and last byte of the style records and the modified style's length, the same for the text
//   file's records;
//   records: position (i32, the 1-based position of the run's last byte in the modified file),
//   length (i32), then `length` bytes of the modified file;
//   packs written here end with a trailer right after the last record, which readers that follow
//   the header never reach: "TQ32", then the CRC-32 (u32) of the original style file, the
//   original text file, the modified style file and the modified text file.

#include "base/crc32.h"
#include "base/result.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace torquil {

class BinaryFile;
class ErrorState;
class Platform;

inline constexpr int kGc3HeaderSize = 31;
inline constexpr int kGc3BlockSize = 4096;
inline constexpr int kGc3RunQuantum = 8; // a run, once started, grows to a multiple of 8 bytes

struct Gc3Header {
    std::string fileType = "GC3";
    std::int16_t ver = 1;
    std::uint8_t encrypt = 0;
    std::uint8_t stylenum = 0;
    std::int32_t StyleDataPosition = 0, StyleDataPositionEnd = 0, StyleDataLOF = 0;
    std::int32_t FXTDataPosition = 0, FXTDataPositionEnd = 0, FXTDataLOF = 0;
};

// The header as "field:value" lines ("File Type:GC3", "ver:1", ...), for the details window and
// the command line.
[[nodiscard]] std::vector<std::string> gc3HeaderLines(const Gc3Header& header);

struct Gc3Record {
    std::int32_t position = 0; // 1-based position of the run's last byte
    std::int32_t length = 0;
    std::vector<std::uint8_t> data;
    [[nodiscard]] std::int64_t first() const { return std::int64_t{position} - length + 1; }
};

[[nodiscard]] std::vector<std::uint8_t> encodeGc3Header(const Gc3Header& header);
[[nodiscard]] Gc3Header decodeGc3Header(const std::uint8_t* bytes); // kGc3HeaderSize bytes

// Seconds since local midnight; the pack's `encrypt` byte is taken from it.
using Gc3Clock = std::function<double()>;
[[nodiscard]] double secondsSinceMidnight();
// round(seconds) mod 255, ties to the even number.
[[nodiscard]] std::uint8_t gc3EncryptByte(double seconds);

// Appends the difference records of one pair of open files to the open pack at its current
// position: the modified file is walked in 4096-byte blocks with the unmodified file read in
// step, and a byte is taken into the current run when that file has no byte there, the bytes
// differ, or the open run's length is not yet a multiple of 8. Runs carry on across block
// boundaries.
void diffFiles(BinaryFile& modified, BinaryFile& original, BinaryFile& pack, Platform& platform);

// Checks a new style file and text file with the editor's own checks before they replace
// anything: empty when they pass, else the cause in words. The style bytes are lent, to be
// checked where they lie, and must be as they were afterwards.
using Gc3ResultCheck = std::function<std::string(std::vector<std::uint8_t>& style,
                                                 const std::vector<std::uint8_t>& fxt)>;

// Writes a pack from a modified and an original style file and text file. Reports its own errors
// ("Error writing GC3 file.", the two-levels refusal) and returns false after one.
[[nodiscard]] bool writeGC3(const std::filesystem::path& modStyle,
                            const std::filesystem::path& origStyle,
                            const std::filesystem::path& modFxt,
                            const std::filesystem::path& origFxt, const std::filesystem::path& pack,
                            Platform& platform, const Gc3Clock& clock = secondsSinceMidnight,
                            const Gc3ResultCheck& check = {});

// Reads a pack's header; "Error reading GC3 file." when the pack is missing or shorter than its
// header.
[[nodiscard]] bool readGC3(const std::filesystem::path& pack, Gc3Header& header,
                           Platform& platform);

// A whole pack in memory: the header and both lists of runs.
struct Gc3Pack {
    Gc3Header header;
    std::vector<Gc3Record> styleRecords, fxtRecords;
};
// Parses a pack; fails, saying why, when the header is short, the type is not "GC3", or a record
// range or a record runs outside the file.
[[nodiscard]] Result<Gc3Pack> parseGc3(const std::vector<std::uint8_t>& bytes);

// The modified file rebuilt from the file a pack was made against and the pack's runs for it,
// `length` bytes long. Fails, saying why, when a run lies past `length` or the file is too short
// for the runs (bytes past its end that no run covers).
[[nodiscard]] Result<std::vector<std::uint8_t>>
rebuildFromRuns(const std::vector<std::uint8_t>& original, const std::vector<Gc3Record>& runs,
                std::int32_t length);

inline constexpr int kGc3TrailerSize = 20;
inline constexpr std::array<std::uint8_t, 4> kGc3TrailerMagic{'T', 'Q', '3', '2'};

struct Gc3Trailer {
    std::uint32_t originalStyle = 0, originalFxt = 0, resultStyle = 0, resultFxt = 0;
};
[[nodiscard]] std::vector<std::uint8_t> encodeGc3Trailer(const Gc3Trailer& trailer);
// The trailer of a pack written here; nullopt for packs without one.
[[nodiscard]] std::optional<Gc3Trailer> findGc3Trailer(const std::vector<std::uint8_t>& bytes,
                                                       const Gc3Header& header);

// Packs written here keep, between the last record and the trailer, the bytes the unmodified
// files held under each run: "TQOR", the two unmodified lengths (i32), then for every style run
// and every text file run in order the unmodified bytes from the run's first position to its
// last or the file's end, then each file's bytes cut off by a shorter result. With them a pack
// can be applied to files edited since, when the bytes it changes are still as they were.
inline constexpr std::array<std::uint8_t, 4> kGc3OriginalsMagic{'T', 'Q', 'O', 'R'};
struct Gc3Originals {
    std::int32_t styleLength = 0, fxtLength = 0;
    std::vector<std::vector<std::uint8_t>> style, fxt; // per run
    std::vector<std::uint8_t> styleTail, fxtTail;      // past a shorter result's end
    // The unmodified style file's header and sprite info section, from the "TQSH" block that
    // follows: with them a pack follows the sections of a file whose sections moved since (see
    // mergeGc3Pack). Empty for packs without the block.
    std::vector<std::uint8_t> styleHead, styleSpriteInfo;
};
inline constexpr std::array<std::uint8_t, 4> kGc3LayoutMagic{'T', 'Q', 'S', 'H'};
// The "TQSH" block: the magic, then the header's length (i32) and bytes, then the sprite info
// section's length (i32) and bytes, of the unmodified style file (`is24`: a .G24 file). Both
// lengths are 0 when the file's header does not describe it.
[[nodiscard]] std::vector<std::uint8_t> encodeGc3StyleLayout(const std::vector<std::uint8_t>& style,
                                                             bool is24);
[[nodiscard]] std::vector<std::uint8_t> encodeGc3Originals(const Gc3Pack& pack,
                                                           const std::vector<std::uint8_t>& style,
                                                           const std::vector<std::uint8_t>& fxt);
// The unmodified bytes of a pack written here; nullopt for packs without them.
[[nodiscard]] std::optional<Gc3Originals> findGc3Originals(const std::vector<std::uint8_t>& bytes,
                                                           const Gc3Pack& pack);

// Why a pack does not apply; the failure's message says it in words.
enum class Gc3Refusal {
    AlreadyApplied, // the files already are the pack's results: nothing written
    Unreadable,     // the pack or a file could not be read, or the pack is not a GC3 pack
    OtherLevel,     // the pack is for another level than the style file's name
    FilesDiffer,    // the files are not the ones the pack was made against
    Conflicts,      // bytes the pack changes were changed since in the files (see conflicts)
    Damaged,        // the pack's runs do not fit its own lengths or checksums
};
struct Gc3Failure : Failure {
    Gc3Refusal refusal = Gc3Refusal::Unreadable;
};
// A pack that applies (both files become the pack's modified files), or why it does not.
using Gc3Applied = Result<void, Gc3Failure>;

// A refusal of `refusal` in the words of `message`.
[[nodiscard]] inline Gc3Failure gc3Refusal(Gc3Refusal refusal, std::string message) {
    Gc3Failure failure;
    failure.message = std::move(message);
    failure.refusal = refusal;
    return failure;
}

// A file a pack is applied to: its path (for messages) and its bytes.
struct Gc3FileBytes {
    const std::filesystem::path& path;
    const std::vector<std::uint8_t>& bytes;
    std::optional<std::uint32_t> crc = {}; // crc32(bytes) when the caller has it already

    std::uint32_t checksum() const { return crc ? *crc : crc32(bytes); }
};
// Whether a pack can be applied to these files, without touching the disk: success when it can
// (with the two results when asked for), else the refusal: AlreadyApplied or FilesDiffer by the
// trailer's checksums when the pack has one, FilesDiffer for a file too short for the runs,
// Damaged for a run past the recorded length or results that miss the trailer. The level is not
// checked here.
[[nodiscard]] Gc3Applied checkGc3Fit(const Gc3Pack& pack, const std::optional<Gc3Trailer>& trailer,
                                     const Gc3FileBytes& style, const Gc3FileBytes& fxt,
                                     std::vector<std::uint8_t>* styleResult = nullptr,
                                     std::vector<std::uint8_t>* fxtResult = nullptr);

// Bytes the pack changes that the files no longer hold as the pack's unmodified files held them:
// positions first..last (1-based) of the file as it is now. `moved` when the file's length is
// not the unmodified file's and the pack cannot follow its sections, so they no longer lie where
// the pack's runs put them. `asBefore` when the pack followed moved sections: the positions are
// then those of the pack's unmodified file (relayStyleFile gives a file to name them in).
struct Gc3Conflict {
    bool fxt = false;
    std::int64_t first = 0, last = 0;
    bool moved = false;
    bool asBefore = false;
};

// The outcome of a pack applied in memory: the new content of each file (unchanged files keep
// their bytes and are flagged as such), or the refusal and, for Conflicts, each conflict.
struct Gc3Merged {
    Gc3Applied applied;
    std::vector<std::uint8_t> style, fxt;
    bool styleChanged = false, fxtChanged = false;
    std::vector<Gc3Conflict> conflicts;
    // When the pack followed moved sections: its style runs at the places they took in the file
    // now (bytes whose section changed size left out), for telling what it changes there.
    std::optional<std::vector<Gc3Record>> styleRunsNow;
};
// Applies a pack to the files' bytes. Files that are the pack's unmodified files (by the
// trailer's checksums, or without a trailer by the runs' fit) become its modified files exactly.
// Files edited since are merged byte by byte when the pack keeps its unmodified bytes: a byte
// the pack changes is taken when the file still holds the unmodified byte, kept when it already
// holds the new one, and a conflict otherwise; bytes a run only carries along (runs grow to
// multiples of 8) keep the file's own. When the style file's sections moved since (another pack
// or a resize grew or shrank some of them) and the pack keeps its unmodified file's layout and
// does not change the file's length itself, each changed byte is followed to the same place in
// its section: a byte in a section of the same size is merged there as above, a byte in a section
// whose size changed is a conflict. Nothing is refused for the level here.
[[nodiscard]] Gc3Merged mergeGc3Pack(const Gc3Pack& pack, const std::optional<Gc3Trailer>& trailer,
                                     const std::optional<Gc3Originals>& originals,
                                     const Gc3FileBytes& style, const Gc3FileBytes& fxt);

} // namespace torquil
