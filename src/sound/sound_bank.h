#pragma once
// A level's sound bank: LEVEL00n.SDT, a table of 12-byte records (offset, length, rate; i32 each,
// no header), and LEVEL00n.RAW with the unsigned 8-bit mono samples it points into. Both lie in
// "audio" beside the style file.

#include "base/atomic_file.h"
#include "base/result.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace torquil {

// An SDT record: offset, length and rate, three 32-bit numbers.
inline constexpr int kSdtRecordSize = 12;

struct StyleFileState;

// Why a sound was not played, written or replaced.
enum class SoundRefusal {
    NoBank,     // the SDT or RAW file is missing: the sound pages say which
    OutOfRange, // "Sound is out of range."
    Failed,     // refused or failed; the message (already shown to the user) says why
};

struct SoundFailure : Failure {
    SoundRefusal refusal = SoundRefusal::Failed;
};

using SoundResult = Result<void, SoundFailure>;

// A sound failure of `refusal` whose message is `message`.
[[nodiscard]] inline SoundFailure soundFailure(SoundRefusal refusal, std::string message) {
    SoundFailure failure;
    failure.message = std::move(message);
    failure.refusal = refusal;
    return failure;
}

struct SdtRecord {
    std::int32_t offset = 0; // start of the sample in the RAW file
    std::int32_t length = 0; // bytes
    std::int32_t rate = 0;   // samples per second
};

struct SoundTable {
    // SDT: index 0 is an unused zero record; the file's first record is index 1.
    std::vector<SdtRecord> SDT{SdtRecord{}};
    std::filesystem::path sdtPath, rawPath;
    [[nodiscard]] int lastIndex() const { return static_cast<int>(SDT.size()) - 1; }
};

// The bank's files for a style (found ignoring case); the names as they would be when missing.
[[nodiscard]] std::filesystem::path sdtFilePath(const StyleFileState& style);
[[nodiscard]] std::filesystem::path rawFilePath(const StyleFileState& style);

// Size in bytes of the pieces in which a RAW file is read and written: a bank of any size costs
// one piece of memory.
inline constexpr std::size_t kRawPiece = 1u << 20;

// Hands `length` bytes of the RAW file from the 0-based byte `start` to `write`, one piece at a
// time. The range must lie inside the file (an input/output error otherwise).
[[nodiscard]] std::error_code copyRawRange(const std::filesystem::path& raw, std::int64_t start,
                                           std::int64_t length, const ContentWriter& write);

// Reads the table afresh. False, silently, when the SDT or the RAW file is missing (the table
// then holds only its zero record).
[[nodiscard]] bool loadSDT(const StyleFileState& style, SoundTable& table);

} // namespace torquil
