#include "base/cause_advice.h"

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

} // namespace torquil
