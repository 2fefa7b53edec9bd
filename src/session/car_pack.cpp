#include "session/car_pack.h"

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "base/file_lock.h"
#include "base/work_dir.h"
#include "cars/fxt.h"
#include "platform/platform.h"
#include "session/car_pack_preview.h"
#include "session/file_backups.h"
#include "session/level_bytes_check.h"
#include "style/level_name.h"
#include "style/style_file.h"

namespace torquil {

namespace fs = std::filesystem;

namespace {

constexpr const char* kNothingChanged = "\rNothing was changed.";
constexpr const char* kWriteError = "Error writing GC3 file.";

std::string levelText(int level) {
    return std::to_string(level) + " (" + mapName(level) + ")";
}

bool readIfPresent(const fs::path& path, std::vector<std::uint8_t>& out) {
    out.clear();
    std::error_code ec;
    return !fs::exists(path, ec) || readWholeFile(path, out);
}

// The car names whose text the pack and the file hold differently where they conflict.
std::vector<std::string> fxtConflicts(const std::vector<Gc3Conflict>& conflicts,
                                      const Gc3Pack& pack, const std::vector<std::uint8_t>& fxt) {
    std::vector<std::uint8_t> forced = fxt;
    bool moved = false;
    for (const Gc3Conflict& c : conflicts) {
        if (!c.fxt) continue;
        moved = moved || c.moved;
        for (const Gc3Record& r : pack.fxtRecords)
            for (std::int64_t p = std::max(c.first, r.first());
                 p <= std::min(c.last, std::int64_t{r.position}); ++p)
                if (static_cast<std::size_t>(p - 1) < forced.size())
                    forced[static_cast<std::size_t>(p - 1)] =
                        r.data[static_cast<std::size_t>(p - r.first())];
    }
    std::vector<std::string> out;
    if (moved) {
        out.push_back("ENGLISH.FXT: its texts have moved since the pack was made (a text changed "
                      "length)");
        return out;
    }
    CarNames now, pack0;
    static_cast<void>(decodeFxtBytes(fxt, &now));
    static_cast<void>(decodeFxtBytes(forced, &pack0));
    for (int m = 0; m < kCarNameCount; ++m) {
        const auto i = static_cast<std::size_t>(m);
        if (now.names[i] != pack0.names[i] || now.keys[i] != pack0.keys[i])
            out.push_back("car name " + std::to_string(m) + ": now \"" + now.names[i] +
                          "\", the pack's \"" + pack0.names[i] + "\"");
    }
    if (out.empty() &&
        std::any_of(conflicts.begin(), conflicts.end(), [](const Gc3Conflict& c) { return c.fxt; }))
        out.push_back("ENGLISH.FXT: texts other than the car names");
    return out;
}

std::vector<std::string> styleConflicts(const std::vector<Gc3Conflict>& conflicts,
                                        const CarPackFiles& files,
                                        const std::vector<std::uint8_t>& style,
                                        const std::vector<std::uint8_t>& fxt) {
    std::vector<std::int64_t> positions;
    std::vector<std::string> out;
    for (const Gc3Conflict& c : conflicts) {
        if (c.fxt) continue;
        if (c.moved) {
            out.push_back(files.style.filename().string() +
                          ": its sections have moved since the pack was made (the file is " +
                          std::to_string(c.last) + " bytes long now)");
            continue;
        }
        for (std::int64_t p = c.first; p <= c.last; ++p) positions.push_back(p);
    }
    if (positions.empty()) return out;
    const std::vector<std::string> where =
        describeStylePositions(files.style, style, fxt, positions);
    out.insert(out.end(), where.begin(), where.end());
    return out;
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

bool readCarPack(const fs::path& path, CarPackFile& out, Platform& platform) {
    std::vector<std::uint8_t> bytes;
    std::string why;
    std::error_code ec;
    if (!fs::is_regular_file(path, ec) || !readWholeFile(path, bytes))
        why = "cannot read " + path.string();
    else if (!parseGc3(bytes, out.pack, why) && why.empty())
        why = "not a GC3 pack";
    if (why.empty()) {
        out.trailer = findGc3Trailer(bytes, out.pack.header);
        out.originals = findGc3Originals(bytes, out.pack);
        return true;
    }
    platform.detail("GC3 pack:" + why);
    platform.message("Error reading GC3 file.\r" + path.string() + ": " + why + ".", Buttons::Ok,
                     Icon::Warning);
    return false;
}

bool writeCarPack(const fs::path& modStyle, const fs::path& origStyle, const fs::path& modFxt,
                  const fs::path& origFxt, const fs::path& pack, Platform& platform) {
    auto check = [&modStyle](std::vector<std::uint8_t>& style,
                             const std::vector<std::uint8_t>& fxt) {
        const std::string refused = checkLentLevelBytes(modStyle, style, fxt);
        return refused.empty() ? refused
                               : "The changed files would not open in the editor:\r" + refused;
    };
    return writeGC3(modStyle, origStyle, modFxt, origFxt, pack, platform, secondsSinceMidnight,
                    check);
}

CarPackPlan planCarPack(const CarPackFile& file, const CarPackFiles& files) {
    CarPackPlan plan;
    auto refuse = [&plan](Gc3Outcome outcome, std::string message) {
        plan.outcome = outcome;
        plan.refusal = std::move(message);
        return plan;
    };
    const std::string name = files.style.filename().string();
    const int level = mapNumberFromFileName(toUpperAscii(name));
    if (file.pack.header.stylenum != level)
        return refuse(Gc3Outcome::OtherLevel, "This GC3 car pack is for level " +
                                                  levelText(file.pack.header.stylenum) + ", but " +
                                                  name + " is level " + levelText(level) + "." +
                                                  kNothingChanged);
    if (!readIfPresent(files.style, plan.styleBefore) || !readIfPresent(files.fxt, plan.fxtBefore))
        return refuse(Gc3Outcome::Unreadable, "Unable to read " + files.style.string() + " or " +
                                                  files.fxt.string() + "." + kNothingChanged);
    Gc3Merged merged = mergeGc3Pack(file.pack, file.trailer, file.originals,
                                    {files.style, plan.styleBefore}, {files.fxt, plan.fxtBefore});
    if (merged.applied.outcome == Gc3Outcome::Conflicts) {
        plan.conflicts = styleConflicts(merged.conflicts, files, plan.styleBefore, plan.fxtBefore);
        const auto names = fxtConflicts(merged.conflicts, file.pack, plan.fxtBefore);
        plan.conflicts.insert(plan.conflicts.end(), names.begin(), names.end());
        std::string message = "This GC3 car pack changes what was changed since it was made in " +
                              name + " or " + files.fxt.filename().string() + ":";
        for (const std::string& c : plan.conflicts) message += "\r  " + c;
        return refuse(Gc3Outcome::Conflicts, message + kNothingChanged);
    }
    if (merged.applied.outcome != Gc3Outcome::Applied)
        return refuse(merged.applied.outcome, merged.applied.message);
    plan.styleAfter = std::move(merged.style);
    plan.fxtAfter = std::move(merged.fxt);
    plan.styleChanged = merged.styleChanged;
    plan.fxtChanged = merged.fxtChanged;
    // What the files would be must open in the editor, whether the pack carries checksums or not.
    if (const std::string refused =
            checkLentLevelBytes(files.style, plan.styleAfter, plan.fxtAfter);
        !refused.empty())
        return refuse(Gc3Outcome::Damaged,
                      "Applied, this GC3 car pack would give files the editor cannot open:\r" +
                          refused + kNothingChanged);
    return plan;
}

CarPackApplied applyCarPack(const fs::path& packPath, const CarPackFiles& files, Platform& platform,
                            BackupRegistry& backups) {
    BusyCursor busy(platform);
    CarPackApplied out;
    auto fail = [&](ApplyResult result, std::string message) {
        out.result = result;
        out.message = std::move(message);
        platform.message(out.message, Buttons::Ok, Icon::Warning);
        return out;
    };
    CarPackFile pack;
    if (!readCarPack(packPath, pack, platform)) {
        out.result = ApplyResult::Failed;
        out.message = "Error reading GC3 file.";
        return out;
    }
    // One writer of each file at a time; the files are read under the locks.
    FileLock styleLock, fxtLock;
    for (auto [lock, file] : {std::pair{&styleLock, &files.style}, std::pair{&fxtLock, &files.fxt}})
        if (!file->empty() &&
            lock->acquire(*file, lockProgramName()) == FileLock::Result::HeldByOther)
            return fail(ApplyResult::Failed, lockHeldMessage(*file, lock->holder()));

    CarPackPlan plan = planCarPack(pack, files);
    if (!plan.applies()) {
        out.conflicts = plan.conflicts;
        const bool unreadable = plan.outcome == Gc3Outcome::Unreadable;
        return fail(unreadable ? ApplyResult::Failed : ApplyResult::Refused, plan.refusal);
    }
    struct Target {
        const fs::path& path;
        const std::vector<std::uint8_t>& bytes;
        bool changed;
    };
    const Target targets[] = {{files.style, plan.styleAfter, plan.styleChanged},
                              {files.fxt, plan.fxtAfter, plan.fxtChanged}};
    std::vector<FileContent> writes;
    std::string kept;
    for (const Target& t : targets) {
        if (!t.changed) continue;
        std::error_code cause;
        if (isWriteProtected(t.path, cause))
            return fail(ApplyResult::Failed, std::string(kWriteError) + "\r" + t.path.string() +
                                                 ": " + describeCause(cause) + ".");
        if (!backups.ensureBackup(t.path, cause))
            return fail(ApplyResult::Failed, std::string(kWriteError) + "\r" + "No backup of " +
                                                 t.path.string() +
                                                 " could be made: " + describeCause(cause) + ".");
        writes.push_back({t.path, t.bytes});
        kept += "\r  " + t.path.string() + " (as it was: " + backupPathOf(t.path).string() + ")";
    }
    // Every changed file is complete and on the disk before any original is replaced.
    if (const ReplaceFailure failure = replaceFilesAtomically(writes))
        return fail(ApplyResult::Failed, std::string(kWriteError) + "\r" + failure.file.string() +
                                             ": " + describeCause(failure.cause) + ".");
    out.message = "GC3 car pack " + packPath.filename().string() + " applied to:" + kept;
    return out;
}

} // namespace torquil
