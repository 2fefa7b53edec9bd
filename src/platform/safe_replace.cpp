#include "platform/safe_replace.h"

#include <vector>

#ifdef _WIN32
#include <io.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace torquil {

namespace fs = std::filesystem;

namespace {

std::FILE* openStream(const fs::path& path, const char* mode) {
#ifdef _WIN32
    std::wstring wmode(mode, mode + std::char_traits<char>::length(mode));
    return _wfopen(path.c_str(), wmode.c_str());
#else
    return std::fopen(path.c_str(), mode);
#endif
}

// A rename is only durable once the folder that holds the name is on the disk too.
void syncFolder(const fs::path& folder) {
#ifndef _WIN32
    int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
#else
    (void)folder;
#endif
}

} // namespace

bool flushToDisk(std::FILE* file) {
    if (!file || std::fflush(file) != 0) return false;
#ifdef _WIN32
    return _commit(_fileno(file)) == 0;
#else
    return ::fsync(fileno(file)) == 0;
#endif
}

bool replaceFile(const fs::path& replacement, const fs::path& target, std::error_code& ec) {
    ec.clear();
#ifdef _WIN32
    // MoveFileEx with REPLACE_EXISTING swaps the directory entry; the old or the new file is
    // always there under the name.
    if (!MoveFileExW(replacement.c_str(), target.c_str(),
                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        ec = std::error_code(static_cast<int>(GetLastError()), std::system_category());
        return false;
    }
    return true;
#else
    // rename() over an existing file is atomic on POSIX systems.
    fs::rename(replacement, target, ec);
    if (ec) return false;
    syncFolder(target.parent_path());
    return true;
#endif
}

bool copyFileSafely(const fs::path& source, const fs::path& target, std::error_code& ec) {
    ec.clear();
    fs::path part = target;
    part += ".part";
    std::FILE* in = openStream(source, "rb");
    if (!in) {
        ec = std::make_error_code(std::errc::no_such_file_or_directory);
        return false;
    }
    std::FILE* out = openStream(part, "wb");
    if (!out) {
        std::fclose(in);
        ec = std::make_error_code(std::errc::permission_denied);
        return false;
    }
    std::vector<char> buffer(64 * 1024);
    bool ok = true;
    for (;;) {
        std::size_t got = std::fread(buffer.data(), 1, buffer.size(), in);
        if (got > 0 && std::fwrite(buffer.data(), 1, got, out) != got) ok = false;
        if (got < buffer.size() || !ok) break;
    }
    if (std::ferror(in)) ok = false;
    if (!flushToDisk(out)) ok = false;
    std::fclose(in);
    if (std::fclose(out) != 0) ok = false;
    if (!ok) {
        std::error_code ignored;
        fs::remove(part, ignored);
        ec = std::make_error_code(std::errc::io_error);
        return false;
    }
    std::error_code ignored;
    fs::permissions(part, fs::status(source, ignored).permissions(), ignored);
    if (!replaceFile(part, target, ec)) {
        fs::remove(part, ignored);
        return false;
    }
    return true;
}

} // namespace torquil
