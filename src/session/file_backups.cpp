#include "session/file_backups.h"

namespace torquil {

namespace fs = std::filesystem;

fs::path backupPathOf(const fs::path& file) {
    fs::path bak = file;
    bak += ".bak";
    return bak;
}

fs::path BackupRegistry::key(const fs::path& file) {
    std::error_code ec;
    fs::path canonical = fs::weakly_canonical(file, ec);
    return ec ? fs::absolute(file, ec) : canonical;
}

ReplaceResult BackupRegistry::ensureBackup(const fs::path& file) {
    return ensure(file, nullptr);
}

ReplaceResult BackupRegistry::ensureBackup(const fs::path& file,
                                           std::span<const std::uint8_t> content) {
    return ensure(file, &content);
}

ReplaceResult BackupRegistry::ensure(const fs::path& file,
                                     const std::span<const std::uint8_t>* content) {
    const fs::path id = key(file);
    std::lock_guard lock(mutex_);
    if (handled_.count(id)) return {};
    const fs::path bak = backupPathOf(file);
    std::error_code probe;
    if (!fs::exists(file, probe) || fs::exists(bak, probe)) {
        handled_.insert(id);
        return {};
    }
    ReplaceResult written =
        content ? replaceFileAtomically(bak, *content) : copyFileAtomically(file, bak);
    if (written) handled_.insert(id);
    return written;
}

bool BackupRegistry::handled(const fs::path& file) const {
    const fs::path id = key(file);
    std::lock_guard lock(mutex_);
    return handled_.count(id) > 0;
}

void BackupRegistry::reset() {
    std::lock_guard lock(mutex_);
    handled_.clear();
}

BackupRegistry& processBackups() {
    static BackupRegistry registry;
    return registry;
}

} // namespace torquil
