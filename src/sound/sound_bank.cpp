#include "sound/sound_bank.h"

#include "base/binary_file.h"
#include "base/work_dir.h"
#include "style/style_file.h"

#include <string>

namespace torquil {

namespace fs = std::filesystem;

namespace {

constexpr int kSdtRecordSize = 12;

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
