#include "platform/dump_file.h"

namespace torquil {

bool DumpFile::open(const std::filesystem::path& folder, const std::string& name,
                    ErrorState& errors) {
    close();
    const std::filesystem::path path = folder.empty() ? std::filesystem::path(name) : folder / name;
    out_.open(path, std::ios::trunc);
    if (!out_.is_open()) {
        errors.raise(err::PathFileAccess, path.string());
        return false;
    }
    return true;
}

} // namespace torquil
