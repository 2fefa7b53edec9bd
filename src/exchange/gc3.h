#pragma once
// GC3 car packs: a user's changes to one level's style file and to ENGLISH.FXT as byte runs that
// differ from the original files. Layout (little-endian, positions 1-based):
//   header, 31 bytes: "GC3", ver (i16), encrypt (u8), stylenum (u8), then six i32: the first
//   and last byte of the style records and the modified style's length, the same for the text
//   file's records;
//   records: position (i32, the 1-based position of the run's last byte in the modified file),
//   length (i32), then `length` bytes of the modified file.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
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
    std::int64_t first() const { return std::int64_t{position} - length + 1; }
};

[[nodiscard]] std::vector<std::uint8_t> encodeGc3Header(const Gc3Header& header);
[[nodiscard]] Gc3Header decodeGc3Header(const std::uint8_t* bytes); // kGc3HeaderSize bytes

// Seconds since local midnight; the pack's `encrypt` byte is taken from it.
using Gc3Clock = std::function<double()>;
double secondsSinceMidnight();
// round(seconds) mod 255, ties to the even number.
std::uint8_t gc3EncryptByte(double seconds);

// Appends the difference records of one pair of open files to the open pack at its current
// position: the modified file is walked in 4096-byte blocks with the original read in step, and
// a byte is taken into the current run when the original has no byte there, the bytes differ,
// or the open run's length is not yet a multiple of 8. Runs carry on across block boundaries.
void diffFiles(BinaryFile& modified, BinaryFile& original, BinaryFile& pack, Platform& platform);

// Writes a pack from a modified and an original style file and text file. Reports its own errors
// ("Error writing GC3 file.", the two-levels refusal) and returns false after one.
[[nodiscard]] bool writeGC3(const std::filesystem::path& modStyle,
                            const std::filesystem::path& origStyle,
                            const std::filesystem::path& modFxt,
                            const std::filesystem::path& origFxt, const std::filesystem::path& pack,
                            Platform& platform, const Gc3Clock& clock = secondsSinceMidnight);

// Reads a pack's header; "Error reading GC3 file." when the pack is missing or shorter than its
// header.
[[nodiscard]] bool readGC3(const std::filesystem::path& pack, Gc3Header& header,
                           Platform& platform);

// A whole pack in memory: the header and both lists of runs.
struct Gc3Pack {
    Gc3Header header;
    std::vector<Gc3Record> styleRecords, fxtRecords;
};
// Parses a pack; false with `error` set when the header is short, the type is not "GC3", or a
// record range or a record runs outside the file.
[[nodiscard]] bool parseGc3(const std::vector<std::uint8_t>& bytes, Gc3Pack& pack,
                            std::string& error);

// Applies a pack to a style file and a text file: each becomes the pack's modified file, with
// the recorded length. Refuses, writing nothing, a pack of another level than the style file's
// name, a file too short for a run, or a run past the recorded length. Both files are written
// to temporary files first and renamed over the originals.
[[nodiscard]] bool applyGC3(const std::filesystem::path& pack, const std::filesystem::path& style,
                            const std::filesystem::path& fxt, Platform& platform);

} // namespace torquil
