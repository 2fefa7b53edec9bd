#include "sound/sound_import.h"

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "base/file_lock.h"
#include "platform/platform.h"
#include "sound/sound_bank.h"

#include <limits>

namespace torquil {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kMaxAddress = std::numeric_limits<std::int32_t>::max();

std::string nameOf(const fs::path& file) {
    return file.filename().string();
}

// A refusal of a sound change, shown to the user; the failure carries the words.
SoundFailure refuseSoundChange(Platform& platform, std::string message,
                               SoundRefusal refusal = SoundRefusal::Failed) {
    platform.message(message);
    return soundFailure(refusal, std::move(message));
}

// The bank's lock (on its SDT), so that two runs never rewrite the pair at once.
SoundResult lockBank(const SoundTable& table, Platform& platform, FileLock& lock) {
    const FileLock::Acquired taken = lock.acquire(table.sdtPath, lockProgramName());
    if (taken) return {};
    if (taken.error().refusal == LockRefusal::HeldByOther)
        return refuseSoundChange(platform, taken.message());
    return refuseSoundChange(
        platform, "The sound bank could not be changed: no lock file can be made "
                  "beside " +
                      table.sdtPath.string() + " (a read-only folder?), so nothing was written.");
}

// The SDT's bytes with record `number` (1-based, as the table counts) set to `record`.
bool sdtWithRecord(const SoundTable& table, int number, const SdtRecord& record,
                   std::vector<std::uint8_t>& bytes) {
    auto read = readWholeFile(table.sdtPath);
    if (!read) return false;
    bytes = std::move(read).value();
    const auto at = static_cast<std::size_t>((number - 1) * kSdtRecordSize);
    if (bytes.size() < at + kSdtRecordSize) bytes.resize(at + kSdtRecordSize, 0);
    putI32(bytes.data() + at, record.offset);
    putI32(bytes.data() + at + 4, record.length);
    putI32(bytes.data() + at + 8, record.rate);
    return true;
}

SoundResult keepBackups(const SoundTable& table, Platform& platform, const KeepBackup& keepBackup) {
    for (const fs::path& file : {table.rawPath, table.sdtPath}) {
        if (!keepBackup) continue;
        if (const Result<void> kept = keepBackup(file); !kept)
            return refuseSoundChange(platform, nameOf(file) +
                                                   " could not be copied to its .bak, so nothing "
                                                   "was written.\rThe system said: " +
                                                   kept.error().cause + ".");
    }
    return {};
}

SoundFailure reportWriteFailure(Platform& platform, const ReplaceFailure& failure) {
    return refuseSoundChange(
        platform, "The sound bank could not be saved: " + failure.file.string() + ": " +
                      describeCause(failure.code) + "." +
                      (failure.replaced == 0
                           ? "\rNothing was changed: both files are as they were."
                           : "\rThe RAW file holds the new samples but " + nameOf(failure.file) +
                                 " still holds the old table: the bank plays as before."));
}

} // namespace

SoundResult replaceSound(const StyleFileState& style, Platform& platform, int number,
                         const DecodedSound& sound, const KeepBackup& keepBackup,
                         SoundReplacement& change) {
    SoundTable table;
    if (!loadSDT(style, table))
        return soundFailure(SoundRefusal::NoBank, "The sound bank's SDT or RAW file is missing.");
    // Index 0 is the table's empty record, not a record of the file: it cannot be replaced.
    if (number < 1 || number > table.lastIndex())
        return refuseSoundChange(platform,
                                 "Sound is out of range.\r" + nameOf(table.sdtPath) +
                                     " holds sounds 1 to " + std::to_string(table.lastIndex()) +
                                     "; sound 0 is the table's empty record.",
                                 SoundRefusal::OutOfRange);
    if (sound.samples.empty() || sound.rate < 1)
        return refuseSoundChange(platform, "Sound " + std::to_string(number) +
                                               " was not replaced: the recording "
                                               "holds no sound.");
    FileLock lock;
    if (SoundResult locked = lockBank(table, platform, lock); !locked) return locked;
    std::error_code sized;
    const auto rawSize = static_cast<std::int64_t>(fs::file_size(table.rawPath, sized));
    const auto length = static_cast<std::int64_t>(sound.samples.size());
    if (sized)
        return refuseSoundChange(platform, table.rawPath.string() + " could not be read: " +
                                               describeCause(sized) + ". Nothing was written.");
    if (rawSize + length > kMaxAddress)
        return refuseSoundChange(
            platform, "Sound " + std::to_string(number) + " was not replaced: " +
                          nameOf(table.rawPath) + " holds " + std::to_string(rawSize) +
                          " bytes, and samples added at its end would lie beyond the 2 GB that "
                          "the table's 32-bit offsets reach. Nothing was written.");
    change.number = number;
    change.before = table.SDT[static_cast<std::size_t>(number)];
    change.after = {static_cast<std::int32_t>(rawSize), static_cast<std::int32_t>(length),
                    sound.rate};
    std::vector<std::uint8_t> sdt;
    if (!sdtWithRecord(table, number, change.after, sdt))
        return refuseSoundChange(platform, table.sdtPath.string() +
                                               " could not be read. Nothing was written.");
    if (SoundResult kept = keepBackups(table, platform, keepBackup); !kept) return kept;

    // The RAW as it was, then the new samples; renamed into place before the SDT.
    FileContent files[2] = {{table.rawPath, {}}, {table.sdtPath, sdt}};
    files[0].source = [&](const ContentWriter& write) -> std::error_code {
        if (auto ec = copyRawRange(table.rawPath, 0, rawSize, write)) return ec;
        return write(sound.samples);
    };
    if (const ReplaceResult written = replaceFilesAtomically(files); !written)
        return reportWriteFailure(platform, written.error());
    return {};
}

SoundResult importSoundFile(const StyleFileState& style, Platform& platform, int number,
                            const fs::path& file, const KeepBackup& keepBackup,
                            SoundReplacement& change) {
    const Result<DecodedSound> sound = decodeSoundFile(file);
    if (!sound)
        return refuseSoundChange(platform, "Sound " + std::to_string(number) +
                                               " was not replaced.\r" + sound.message());
    return replaceSound(style, platform, number, *sound, keepBackup, change);
}

bool setSoundRecord(const StyleFileState& style, Platform& platform, const SoundReplacement& change,
                    bool undo, const KeepBackup& keepBackup) {
    SoundTable table;
    const std::string sound = "Sound " + std::to_string(change.number);
    const SdtRecord& from = undo ? change.after : change.before;
    const SdtRecord& to = undo ? change.before : change.after;
    if (!loadSDT(style, table) || change.number < 1 || change.number > table.lastIndex()) {
        platform.message(sound + " could not be set back: the sound bank " +
                         table.sdtPath.string() + " is missing or shorter than it was.");
        return false;
    }
    FileLock lock;
    if (!lockBank(table, platform, lock)) return false; // told
    const SdtRecord now = table.SDT[static_cast<std::size_t>(change.number)];
    std::error_code sized;
    const auto rawSize = static_cast<std::int64_t>(fs::file_size(table.rawPath, sized));
    if (now.offset != from.offset || now.length != from.length || now.rate != from.rate || sized ||
        std::int64_t{to.offset} + to.length > rawSize) {
        platform.message(sound + " could not be set back: " + nameOf(table.sdtPath) + " or " +
                         nameOf(table.rawPath) +
                         " was changed since (by another program or run). Nothing was written.");
        return false;
    }
    std::vector<std::uint8_t> sdt;
    if (!sdtWithRecord(table, change.number, to, sdt)) {
        platform.message(table.sdtPath.string() + " could not be read. Nothing was written.");
        return false;
    }
    if (!keepBackups(table, platform, keepBackup)) return false; // told
    if (const ReplaceResult written = replaceFileAtomically(table.sdtPath, sdt); !written) {
        platform.message(sound + " could not be set back: " + written.error().file.string() + ": " +
                         written.error().cause + ". Nothing was changed.");
        return false;
    }
    return true;
}

} // namespace torquil
