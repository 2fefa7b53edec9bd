#include "base/file_stamp.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/stat.h>
#endif

namespace torquil {

namespace fs = std::filesystem;

namespace {

bool readIdentity(const fs::path& path, FileStamp& stamp) {
#ifdef _WIN32
    // No access rights are needed to read a file's index, and a file opened by another program
    // can still be asked.
    HANDLE h = CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                           nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (h == INVALID_HANDLE_VALUE) return false;
    BY_HANDLE_FILE_INFORMATION info{};
    const bool ok = GetFileInformationByHandle(h, &info) != 0;
    CloseHandle(h);
    if (!ok) return false;
    stamp.volume = info.dwVolumeSerialNumber;
    stamp.identity = (std::uint64_t{info.nFileIndexHigh} << 32) | info.nFileIndexLow;
    return true;
#else
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) return false;
    stamp.volume = static_cast<std::uint64_t>(st.st_dev);
    stamp.identity = static_cast<std::uint64_t>(st.st_ino);
    return true;
#endif
}

} // namespace

FileStamp stampOf(const fs::path& path) {
    FileStamp stamp;
    std::error_code ec;
    const auto length = fs::file_size(path, ec);
    if (ec) return {};
    const auto written = fs::last_write_time(path, ec);
    if (ec || !readIdentity(path, stamp)) return {};
    stamp.exists = true;
    stamp.length = static_cast<std::int64_t>(length);
    stamp.written = written;
    return stamp;
}

} // namespace torquil
