#include "session/car_pack.h"

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "base/file_lock.h"
#include "base/file_transaction.h"
#include "base/work_dir.h"
#include "cars/fxt.h"
#include "exchange/gc3_moved.h"
#include "platform/platform.h"
#include "session/car_pack_preview.h"
#include "session/file_backups.h"
#include "session/level_bytes_check.h"
#include "session/save_sequence.h"
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
    if (!fs::exists(path, ec)) return true;
    auto read = readWholeFile(path);
    if (read) out = std::move(read).value();
    return read.ok();
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
                                        const std::optional<Gc3Originals>& originals,
                                        const std::vector<std::uint8_t>& style,
                                        const std::vector<std::uint8_t>& fxt) {
    std::vector<std::int64_t> positions, positionsBefore;
    std::vector<std::string> out;
    for (const Gc3Conflict& c : conflicts) {
        if (c.fxt) continue;
        if (c.moved) {
            out.push_back(files.style.filename().string() +
                          ": its sections have moved since the pack was made (the file is " +
                          std::to_string(c.last) + " bytes long now)");
            continue;
        }
        for (std::int64_t p = c.first; p <= c.last; ++p)
            (c.asBefore ? positionsBefore : positions).push_back(p);
    }
    if (!positions.empty()) {
        const std::vector<std::string> where =
            describeStylePositions(files.style, style, fxt, positions);
        out.insert(out.end(), where.begin(), where.end());
    }
    // Positions of the file the pack was made against: named in the file as it is now, laid out
    // as that one was, so that each sprite stands where the pack saw it.
    if (!positionsBefore.empty() && originals) {
        const std::vector<std::uint8_t> relaid =
            relayStyleFile(*originals, style, isG24FileName(files.style.filename().string()));
        const std::vector<std::string> where =
            describeStylePositions(files.style, relaid, fxt, positionsBefore);
        out.insert(out.end(), where.begin(), where.end());
    }
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
    std::string why;
    std::error_code ec;
    const auto read = fs::is_regular_file(path, ec)
                          ? readWholeFile(path)
                          : Result<std::vector<std::uint8_t>>(torquil::fail("not a file"));
    const std::vector<std::uint8_t> bytes = read.valueOr({});
    if (!read)
        why = "cannot read " + path.string();
    else if (Result<Gc3Pack> parsed = parseGc3(bytes); parsed)
        out.pack = std::move(parsed).value();
    else
        why = parsed.message();
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
        const Result<void> opens = checkLentLevelBytes(modStyle, style, fxt);
        return opens ? std::string{}
                     : "The changed files would not open in the editor:\r" + opens.message();
    };
    return writeGC3(modStyle, origStyle, modFxt, origFxt, pack, platform, secondsSinceMidnight,
                    check);
}

Result<CarPackPlan, CarPackFailure> planCarPack(const CarPackFile& file,
                                                const CarPackFiles& files) {
    CarPackPlan plan;
    std::vector<std::string> conflicts;
    auto refuse = [&conflicts](Gc3Refusal refusal, std::string message) {
        CarPackFailure failure;
        failure.message = std::move(message);
        failure.refusal =
            refusal == Gc3Refusal::Unreadable ? CarPackRefusal::Failed : CarPackRefusal::Refused;
        failure.conflicts = std::move(conflicts);
        return failure;
    };
    const std::string name = files.style.filename().string();
    const int level = mapNumberFromFileName(toUpperAscii(name));
    if (file.pack.header.stylenum != level)
        return refuse(Gc3Refusal::OtherLevel, "This GC3 car pack is for level " +
                                                  levelText(file.pack.header.stylenum) + ", but " +
                                                  name + " is level " + levelText(level) + "." +
                                                  kNothingChanged);
    if (!readIfPresent(files.style, plan.styleBefore) || !readIfPresent(files.fxt, plan.fxtBefore))
        return refuse(Gc3Refusal::Unreadable, "Unable to read " + files.style.string() + " or " +
                                                  files.fxt.string() + "." + kNothingChanged);
    Gc3Merged merged = mergeGc3Pack(file.pack, file.trailer, file.originals,
                                    {files.style, plan.styleBefore}, {files.fxt, plan.fxtBefore});
    if (!merged.applied && merged.applied.error().refusal == Gc3Refusal::Conflicts) {
        conflicts = styleConflicts(merged.conflicts, files, file.originals, plan.styleBefore,
                                   plan.fxtBefore);
        const auto names = fxtConflicts(merged.conflicts, file.pack, plan.fxtBefore);
        conflicts.insert(conflicts.end(), names.begin(), names.end());
        std::string message = "This GC3 car pack changes what was changed since it was made in " +
                              name + " or " + files.fxt.filename().string() + ":";
        for (const std::string& c : conflicts) message += "\r  " + c;
        return refuse(Gc3Refusal::Conflicts, message + kNothingChanged);
    }
    if (!merged.applied) return refuse(merged.applied.error().refusal, merged.applied.message());
    plan.styleAfter = std::move(merged.style);
    plan.fxtAfter = std::move(merged.fxt);
    plan.styleChanged = merged.styleChanged;
    plan.fxtChanged = merged.fxtChanged;
    if (merged.styleRunsNow) {
        plan.placed = file.pack;
        plan.placed->styleRecords = std::move(*merged.styleRunsNow);
    }
    // What the files would be must open in the editor, whether the pack carries checksums or not.
    if (const Result<void> opens = checkLentLevelBytes(files.style, plan.styleAfter, plan.fxtAfter);
        !opens)
        return refuse(Gc3Refusal::Damaged,
                      "Applied, this GC3 car pack would give files the editor cannot open:\r" +
                          opens.message() + kNothingChanged);
    return plan;
}

CarPackApplied applyCarPack(const fs::path& packPath, const CarPackFiles& files, Platform& platform,
                            BackupRegistry& backups, LinkPolicy links) {
    BusyCursor busy(platform);
    auto refused = [](CarPackRefusal refusal, std::string message) {
        CarPackFailure failure;
        failure.message = std::move(message);
        failure.refusal = refusal;
        return failure;
    };
    auto fail = [&](CarPackRefusal refusal, std::string message) {
        platform.message(message, Buttons::Ok, Icon::Warning);
        return refused(refusal, std::move(message));
    };
    CarPackFile pack;
    if (!readCarPack(packPath, pack, platform))
        return refused(CarPackRefusal::Failed, "Error reading GC3 file."); // shown by the reader
    // One writer of each file at a time; the files are read under the locks, and what a save cut
    // short left is finished or rolled back before they are read.
    std::vector<fs::path> paths;
    for (const fs::path* file : {&files.style, &files.fxt})
        if (!file->empty()) paths.push_back(*file);
    const RecoveryReport recovered = recoverFiles(paths);
    for (const std::string& found : recovered.found) platform.message(found);
    FileLock styleLock, fxtLock;
    for (auto [lock, file] : {std::pair{&styleLock, &files.style}, std::pair{&fxtLock, &files.fxt}})
        if (!file->empty())
            if (const FileLock::Acquired taken = lock->acquire(*file, lockProgramName());
                !taken && taken.error().refusal == LockRefusal::HeldByOther)
                return fail(CarPackRefusal::Failed, taken.message());
    const FileStamp styleReadAs = stampOf(files.style), fxtReadAs = stampOf(files.fxt);

    Result<CarPackPlan, CarPackFailure> planned = planCarPack(pack, files);
    if (!planned) {
        platform.message(planned.message(), Buttons::Ok, Icon::Warning);
        return planned.error();
    }
    const CarPackPlan& plan = *planned;
    struct Target {
        const fs::path& path;
        const std::vector<std::uint8_t>& bytes;
        bool changed;
        const FileStamp& readAs;
    };
    const Target targets[] = {{files.style, plan.styleAfter, plan.styleChanged, styleReadAs},
                              {files.fxt, plan.fxtAfter, plan.fxtChanged, fxtReadAs}};
    std::vector<CommitFile> writes;
    std::string kept;
    for (const Target& t : targets) {
        if (!t.changed) continue;
        if (const ReplaceResult writable = checkWritable(t.path); !writable)
            return fail(CarPackRefusal::Failed, std::string(kWriteError) + "\r" + t.path.string() +
                                                    ": " + writable.error().cause + ".");
        writes.push_back({t.path, t.bytes, t.readAs});
        kept += "\r  " + t.path.string() + " (as it was: " + backupPathOf(t.path).string() + ")";
    }
    // The pair goes through the one transaction of the level's files: the originals are kept as
    // ".bak", then every changed file is complete and on the disk before any is replaced.
    CommitOptions commit;
    for (const CommitFile& w : writes) commit.lockedByCaller.push_back(w.target);
    commit.keepBackup = [&backups](const fs::path& file) { return backups.ensureBackup(file); };
    commit.askWriteOver = [&platform](const fs::path& file) {
        return platform.message(changedOnDiskQuestion(file), Buttons::YesNo, Icon::Warning) ==
               Answer::Yes;
    };
    commit.breakLinks = links == LinkPolicy::Break;
    if (links == LinkPolicy::Ask)
        commit.askBreakLinks = [&platform](const fs::path& file, std::uint64_t names) {
            return platform.message(hardLinkQuestion(file, names), Buttons::YesNo, Icon::Warning) ==
                   Answer::Yes;
        };
    const CommitResult result = commitFiles(writes, commit);
    for (const std::string& found : foundBy(result)) platform.message(found);
    if (!result) {
        const CommitFailure& failure = result.error();
        switch (failure.outcome) {
        case CommitOutcome::BackupFailed:
            return fail(CarPackRefusal::Failed, std::string(kWriteError) + "\r" + "No backup of " +
                                                    failure.file.string() +
                                                    " could be made: " + failure.cause + ".");
        case CommitOutcome::WriteFailed:
            return fail(CarPackRefusal::Failed,
                        std::string(kWriteError) + "\r" + failure.file.string() + ": " +
                            failure.cause + "." + (failure.partly ? "\r" + failure.message : ""));
        default:
            return fail(CarPackRefusal::Failed, std::string(kWriteError) + "\r" + failure.message);
        }
    }
    return "GC3 car pack " + packPath.filename().string() + " applied to:" + kept;
}

} // namespace torquil
