#include "session/car_pack.h"

#include "base/binary_file.h"
#include "base/work_dir.h"
#include "platform/platform.h"
#include "session/file_backups.h"
#include "style/level_name.h"
#include "style/style_file.h"

namespace torquil {

namespace fs = std::filesystem;

namespace {

constexpr const char* kNothingChanged = "\rNothing was changed.";

std::string levelText(int level) {
    return std::to_string(level) + " (" + mapName(level) + ")";
}

bool readIfPresent(const fs::path& path, std::vector<std::uint8_t>& out) {
    out.clear();
    std::error_code ec;
    return !fs::exists(path, ec) || readWholeFile(path, out);
}

} // namespace

CarPackFiles levelFiles(const StyleFileState& style) {
    return {style.path, findFileNoCase(style.dataFolder(), "ENGLISH.FXT")};
}

CarPackFiles levelBackups(const StyleFileState& style) {
    const CarPackFiles files = levelFiles(style);
    CarPackFiles out;
    std::error_code ec;
    if (fs::is_regular_file(backupPathOf(files.style), ec)) out.style = backupPathOf(files.style);
    if (fs::is_regular_file(backupPathOf(files.fxt), ec)) out.fxt = backupPathOf(files.fxt);
    return out;
}

bool readCarPack(const fs::path& path, Gc3Pack& out, Platform& platform) {
    std::vector<std::uint8_t> bytes;
    std::string why;
    std::error_code ec;
    if (!fs::is_regular_file(path, ec) || !readWholeFile(path, bytes))
        why = "cannot read " + path.string();
    else if (!parseGc3(bytes, out, why) && why.empty())
        why = "not a GC3 pack";
    if (why.empty()) return true;
    platform.detail("GC3 pack:" + why);
    platform.message("Error reading GC3 file.", Buttons::Ok, Icon::Warning);
    return false;
}

std::string carPackRefusal(const Gc3Pack& pack, const CarPackFiles& files,
                           const std::vector<std::uint8_t>& style,
                           const std::vector<std::uint8_t>& fxt) {
    const std::string name = files.style.filename().string();
    const int level = mapNumberFromFileName(toUpperAscii(name));
    if (pack.header.stylenum != level)
        return "This GC3 car pack is for level " + levelText(pack.header.stylenum) + ", but " +
               name + " is level " + levelText(level) + "." + kNothingChanged;

    std::vector<std::uint8_t> styleAfter, fxtAfter;
    std::string why;
    if (!rebuildFromRuns(style, pack.styleRecords, pack.header.StyleDataLOF, styleAfter, why))
        return "This GC3 car pack does not fit " + name + ": " + why + "." + kNothingChanged;
    if (!rebuildFromRuns(fxt, pack.fxtRecords, pack.header.FXTDataLOF, fxtAfter, why))
        return "This GC3 car pack does not fit " + files.fxt.filename().string() + ": " + why +
               "." + kNothingChanged;
    // Applied once, the files hold every byte of the pack: a second time would change nothing
    // here, and on files edited since it would overwrite the edits.
    if (styleAfter == style && fxtAfter == fxt)
        return "This GC3 car pack is already applied: " + name + " and " +
               files.fxt.filename().string() + " already hold its changes." + kNothingChanged;
    return {};
}

ApplyResult applyCarPack(const fs::path& packPath, const CarPackFiles& files, Platform& platform,
                         BackupRegistry& backups) {
    Gc3Pack pack;
    if (!readCarPack(packPath, pack, platform)) return ApplyResult::Failed;
    std::vector<std::uint8_t> style, fxt;
    if (!readIfPresent(files.style, style) || !readIfPresent(files.fxt, fxt)) {
        platform.message("Unable to read " + files.style.string() + ".", Buttons::Ok,
                         Icon::Warning);
        return ApplyResult::Failed;
    }
    if (const std::string refusal = carPackRefusal(pack, files, style, fxt); !refusal.empty()) {
        platform.message(refusal, Buttons::Ok, Icon::Warning);
        return ApplyResult::Refused;
    }
    for (const fs::path* file : {&files.style, &files.fxt}) {
        std::error_code ec;
        if (!backups.ensureBackup(*file, ec)) {
            platform.message("Unable to keep a copy of " + file->string() + " in " +
                                 backupPathOf(*file).string() + "." + kNothingChanged,
                             Buttons::Ok, Icon::Warning);
            return ApplyResult::Failed;
        }
    }
    return applyGC3(packPath, files.style, files.fxt, platform) ? ApplyResult::Applied
                                                                : ApplyResult::Failed;
}

} // namespace torquil
