#include "base/cause_advice.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace torquil {

std::string causeAdvice(std::string_view cause, Access access) {
    const bool writing = access == Access::Writing;
    if (cause == "permission denied")
        return writing ? "The file is read-only or this user may not write it: it is not damaged. "
                         "Make it writable (clear its read-only attribute, or get write "
                         "permission for it and its folder) and try again."
                       : "This user may not read the file: it is not damaged. Get read permission "
                         "for it and try again.";
    if (cause == "read-only file system")
        return "The disk or folder is read-only: the file is not damaged. Copy the level to a "
               "writable folder and open it from there.";
    if (cause == "disk full") return "Free some space on the disk and try again.";
    if (cause == "file in use")
        return "Another program has the file open (KRB itself?): close it and try again.";
    if (cause == "no such file or directory")
        return "Check that the file and its folder are still there.";
    return {};
}

std::string describeCause(const std::error_code& cause) {
    if (!cause) return {};
    const std::error_condition c = cause.default_error_condition();
    if (c == std::errc::permission_denied || c == std::errc::operation_not_permitted)
        return "permission denied";
    if (c == std::errc::no_space_on_device || c == std::errc::file_too_large) return "disk full";
    if (c == std::errc::read_only_file_system) return "read-only file system";
    if (c == std::errc::no_such_file_or_directory) return "no such file or directory";
    if (c == std::errc::text_file_busy || c == std::errc::device_or_resource_busy)
        return "file in use";
#ifdef _WIN32
    if (cause.category() == std::system_category()) {
        switch (cause.value()) {
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
            return "file in use";
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return "disk full";
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return "no such file or directory";
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
            return "permission denied";
        default:
            break;
        }
    }
#endif
    return cause.message();
}

} // namespace torquil
