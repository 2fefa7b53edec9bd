#pragma once
// A style file read and written field by field: 1-based positions as the formats are described,
// reads past the end that yield zeros (and leave the file at its end) instead of failing, and
// errors that become the session's pending run-time error. It reads and writes a file on disk or
// bytes in memory (the fuzz targets and tests feed inputs that way).

#include "base/result.h"
#include "base/runtime_error.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <span>
#include <vector>

namespace torquil {

class BinaryFile {
public:
    enum class Mode {
        Read,      // existing file, read only
        ReadWrite, // existing file, read and write in place
        Create     // new or emptied file, read and write
    };

    explicit BinaryFile(ErrorState& errors) : errors_(errors) {}
    BinaryFile(const BinaryFile&) = delete;
    BinaryFile& operator=(const BinaryFile&) = delete;
    ~BinaryFile();

    // Opens the file; on failure raises "File not found" (53) or "Path/File access error" (75)
    // and returns false.
    [[nodiscard]] bool open(const std::filesystem::path& path, Mode mode);
    // Reads and writes `bytes` in place of a file: writes change and grow the vector, which must
    // outlive the BinaryFile (or the next open/close). `name` stands for the path in messages.
    void openBytes(std::vector<std::uint8_t>& bytes,
                   const std::filesystem::path& name = "(memory)");
    // Opens `bytes`, kept by the BinaryFile, as the content of the file at `path`; takeBytes()
    // hands the new content over (also after close()) for one write of the whole file.
    void openInMemory(const std::filesystem::path& path, std::vector<std::uint8_t> bytes);
    [[nodiscard]] std::vector<std::uint8_t> takeBytes();
    // Cuts the content held in memory to `length` bytes (a file on disk is cut by a copy).
    void truncateInMemory(std::int64_t length);
    // Whether a write or a cut since the content was opened in memory changed any byte of it (a
    // write of the bytes already there changes nothing).
    [[nodiscard]] bool memoryChanged() const { return memoryChanged_; }
    void close();
    [[nodiscard]] bool isOpen() const { return file_ != nullptr || memory_ != nullptr; }
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    // LOF: the file's length in bytes.
    [[nodiscard]] std::int64_t length() const { return length_; }
    // Seek(): the 1-based position of the next byte read or written.
    [[nodiscard]] std::int64_t position() const { return pos_ + 1; }
    // Seek statement: positions below 1 raise "Bad record number" (63).
    void seek(std::int64_t position1);
    // EOF(): true once the position is past the last byte of the file.
    [[nodiscard]] bool atEnd() const { return pos_ >= length_; }

    // Reads dest.size() bytes; bytes past the end read as zero. Returns the bytes really read.
    // A short read is no failure here (the rest reads as zero), so the count may go unused.
    std::size_t read(std::span<std::uint8_t> dest);
    [[nodiscard]] std::uint8_t readU8();
    [[nodiscard]] std::int16_t readI16();
    [[nodiscard]] std::uint16_t readU16();
    [[nodiscard]] std::int32_t readI32();

    void write(std::span<const std::uint8_t> src);
    void writeU8(std::uint8_t v);
    void writeI16(std::int16_t v);
    void writeI32(std::int32_t v);

    // Flushes written bytes to the operating system; raises 61 when that fails.
    void flush();

private:
    [[nodiscard]] bool fillWindow(std::int64_t at);
    [[nodiscard]] bool seekOs(std::int64_t offset);

    ErrorState& errors_;
    std::FILE* file_ = nullptr;
    std::vector<std::uint8_t>* memory_ = nullptr; // the bytes of openBytes()
    std::filesystem::path path_;
    std::int64_t length_ = 0;
    std::int64_t pos_ = 0; // 0-based
    // Read cache: bytes [windowStart_, windowStart_ + window_.size()) of the file.
    std::vector<std::uint8_t> window_;
    std::int64_t windowStart_ = 0;
    std::int64_t osPos_ = -1;              // where the OS file pointer is, -1 when unknown
    std::vector<std::uint8_t> ownedBytes_; // the content of openInMemory() (kept after close)
    bool memoryChanged_ = false;
};

// Little-endian helpers for byte buffers (never a struct laid over bytes).
[[nodiscard]] inline std::int16_t getI16(const std::uint8_t* p) {
    return static_cast<std::int16_t>(p[0] | (p[1] << 8));
}
[[nodiscard]] inline std::uint16_t getU16(const std::uint8_t* p) {
    return static_cast<std::uint16_t>(p[0] | (p[1] << 8));
}
[[nodiscard]] inline std::int32_t getI32(const std::uint8_t* p) {
    return static_cast<std::int32_t>(
        static_cast<std::uint32_t>(p[0]) | (static_cast<std::uint32_t>(p[1]) << 8) |
        (static_cast<std::uint32_t>(p[2]) << 16) | (static_cast<std::uint32_t>(p[3]) << 24));
}
inline void putI16(std::uint8_t* p, std::int16_t v) {
    auto u = static_cast<std::uint16_t>(v);
    p[0] = static_cast<std::uint8_t>(u);
    p[1] = static_cast<std::uint8_t>(u >> 8);
}
inline void putI32(std::uint8_t* p, std::int32_t v) {
    auto u = static_cast<std::uint32_t>(v);
    for (int i = 0; i < 4; ++i) p[i] = static_cast<std::uint8_t>(u >> (8 * i));
}

// Reads a whole file into memory.
[[nodiscard]] Result<std::vector<std::uint8_t>> readWholeFile(const std::filesystem::path& path);

} // namespace torquil
