#include "session/output_guard.h"

#include "base/utf8_path.h"
#include "base/work_dir.h"
#include "session/file_backups.h"
#include "session/load_sequence.h"
#include "sound/sound_bank.h"
#include "style/style_file.h"

#include <algorithm>
#include <cctype>

namespace torquil {

namespace fs = std::filesystem;

namespace {

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

fs::path resolved(const fs::path& file) {
    std::error_code ec;
    fs::path full = fs::weakly_canonical(fs::absolute(file, ec), ec);
    return ec ? fs::absolute(file).lexically_normal() : full;
}

bool sameFile(const fs::path& a, const fs::path& b) {
    std::error_code ec;
    if (fs::exists(a, ec) && fs::exists(b, ec)) return fs::equivalent(a, b, ec) && !ec;
    const fs::path ra = resolved(a), rb = resolved(b);
    return ra.parent_path() == rb.parent_path() &&
           upper(utf8Of(ra.filename())) == upper(utf8Of(rb.filename()));
}

void addWithBackup(std::vector<GuardedFile>& files, const fs::path& file, const std::string& role) {
    files.push_back({file, role});
    files.push_back({backupPathOf(file), "the backup of " + role});
}

} // namespace

std::vector<GuardedFile> levelFiles(const fs::path& style) {
    std::vector<GuardedFile> files;
    addWithBackup(files, style, "the level's style file");
    addWithBackup(files, findFileNoCase(style.parent_path(), "ENGLISH.FXT"),
                  "the level's ENGLISH.FXT");
    StyleFileState state;
    prepareStyle(state, style, kLoadSprites);
    addWithBackup(files, sdtFilePath(state), "the level's sound bank (SDT)");
    addWithBackup(files, rawFilePath(state), "the level's sound bank (RAW)");
    return files;
}

Result<void> checkOutput(const fs::path& output, const std::vector<GuardedFile>& guarded) {
    for (const GuardedFile& file : guarded)
        if (sameFile(output, file.path))
            return fail("the output " + utf8Of(resolved(output)) + " is " + file.role +
                        "; nothing was written. Choose another file name.");
    return {};
}

} // namespace torquil
