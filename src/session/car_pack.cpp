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

bool readCarPack(const fs::path& path, Gc3Pack& out, Platform& platform,
                 std::optional<Gc3Trailer>* trailer) {
    std::vector<std::uint8_t> bytes;
    std::string why;
    std::error_code ec;
    if (!fs::is_regular_file(path, ec) || !readWholeFile(path, bytes))
        why = "cannot read " + path.string();
    else if (!parseGc3(bytes, out, why) && why.empty())
        why = "not a GC3 pack";
    if (why.empty()) {
        if (trailer) *trailer = findGc3Trailer(bytes, out.header);
        return true;
    }
    platform.detail("GC3 pack:" + why);
    platform.message("Error reading GC3 file.", Buttons::Ok, Icon::Warning);
    return false;
}

std::string carPackRefusal(const Gc3Pack& pack, const std::optional<Gc3Trailer>& trailer,
                           const CarPackFiles& files, const std::vector<std::uint8_t>& style,
                           const std::vector<std::uint8_t>& fxt) {
    const std::string name = files.style.filename().string();
    const int level = mapNumberFromFileName(toUpperAscii(name));
    if (pack.header.stylenum != level)
        return "This GC3 car pack is for level " + levelText(pack.header.stylenum) + ", but " +
               name + " is level " + levelText(level) + "." + kNothingChanged;

    std::vector<std::uint8_t> styleAfter, fxtAfter;
    const Gc3Applied fit =
        checkGc3Fit(pack, trailer, {files.style, style}, {files.fxt, fxt}, &styleAfter, &fxtAfter);
    if (fit.outcome != Gc3Outcome::Applied) return fit.message;
    // A pack without a trailer cannot tell its own results: applied once, the files hold every
    // byte of it, and a second time would overwrite whatever was edited since.
    if (styleAfter == style && fxtAfter == fxt)
        return "This GC3 car pack is already applied: " + name + " and " +
               files.fxt.filename().string() + " already hold its changes." + kNothingChanged;
    return {};
}

ApplyResult applyCarPack(const fs::path& packPath, const CarPackFiles& files, Platform& platform,
                         BackupRegistry& backups) {
    Gc3Pack pack;
    std::optional<Gc3Trailer> trailer;
    if (!readCarPack(packPath, pack, platform, &trailer)) return ApplyResult::Failed;
    std::vector<std::uint8_t> style, fxt;
    if (!readIfPresent(files.style, style) || !readIfPresent(files.fxt, fxt)) {
        platform.message("Unable to read " + files.style.string() + ".", Buttons::Ok,
                         Icon::Warning);
        return ApplyResult::Failed;
    }
    if (const std::string refusal = carPackRefusal(pack, trailer, files, style, fxt);
        !refusal.empty()) {
        platform.message(refusal, Buttons::Ok, Icon::Warning);
        return ApplyResult::Refused;
    }
    auto keep = [&backups](const fs::path& file, std::error_code& ec) {
        return backups.ensureBackup(file, ec);
    };
    const Gc3Applied applied = applyGc3Pack(packPath, files.style, files.fxt, platform, keep);
    switch (applied.outcome) {
    case Gc3Outcome::Applied:
        return ApplyResult::Applied;
    case Gc3Outcome::AlreadyApplied:
    case Gc3Outcome::OtherLevel:
    case Gc3Outcome::FilesDiffer:
    case Gc3Outcome::Damaged:
        platform.message(applied.message, Buttons::Ok, Icon::Warning);
        return ApplyResult::Refused;
    case Gc3Outcome::Unreadable:
    case Gc3Outcome::Locked:
    case Gc3Outcome::WriteFailed:
        break;
    }
    platform.message(applied.message, Buttons::Ok, Icon::Warning);
    return ApplyResult::Failed;
}

} // namespace torquil
