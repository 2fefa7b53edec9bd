#include "sound/sound_bank.h"

#include "base/binary_file.h"
#include "base/work_dir.h"
#include "style/style_file.h"

#include <algorithm>

#include <fstream>
#include <string>

namespace torquil {

namespace fs = std::filesystem;

namespace {

fs::path bankFile(const StyleFileState& style, const char* extension) {
    const fs::path audio = findFileNoCase(style.dataFolder(), "audio");
    // "LEVEL00" and the level number, unpadded: level 1 is LEVEL001, level 12 LEVEL0012.
    return findFileNoCase(audio, "LEVEL00" + std::to_string(style.gMapNumber) + extension);
}

} // namespace

fs::path sdtFilePath(const StyleFileState& style) {
    return bankFile(style, ".SDT");
}
fs::path rawFilePath(const StyleFileState& style) {
    return bankFile(style, ".RAW");
}

std::error_code copyRawRange(const fs::path& raw, std::int64_t start, std::int64_t length,
                             const ContentWriter& write) {
    std::ifstream in(raw, std::ios::binary);
    if (!in) return std::make_error_code(std::errc::no_such_file_or_directory);
    in.seekg(static_cast<std::streamoff>(start));
    std::vector<std::uint8_t> piece(static_cast<std::size_t>(
        std::min<std::int64_t>(length, static_cast<std::int64_t>(kRawPiece))));
    for (std::int64_t left = length; left > 0;) {
        const auto n = static_cast<std::size_t>(std::min<std::int64_t>(left, kRawPiece));
        in.read(reinterpret_cast<char*>(piece.data()), static_cast<std::streamsize>(n));
        if (static_cast<std::size_t>(in.gcount()) != n)
            return std::make_error_code(std::errc::io_error);
        if (auto ec = write(std::span<const std::uint8_t>(piece.data(), n))) return ec;
        left -= static_cast<std::int64_t>(n);
    }
    return {};
}

bool loadSDT(const StyleFileState& style, SoundTable& table) {
    table = SoundTable{};
    table.sdtPath = sdtFilePath(style);
    table.rawPath = rawFilePath(style);
    std::error_code ec;
    if (!fs::is_regular_file(table.sdtPath, ec) || !fs::is_regular_file(table.rawPath, ec))
        return false;
    ErrorState errors;
    BinaryFile sdt(errors);
    if (!sdt.open(table.sdtPath, BinaryFile::Mode::Read)) return false;
    // Records until the end of the file; a cut last record reads its missing bytes as zeros.
    table.SDT.reserve(static_cast<std::size_t>(sdt.length() / kSdtRecordSize + 2));
    while (!sdt.atEnd()) {
        std::uint8_t b[kSdtRecordSize];
        sdt.read(b);
        table.SDT.push_back({getI32(b), getI32(b + 4), getI32(b + 8)});
    }
    return !errors.hasPending();
}

} // namespace torquil
