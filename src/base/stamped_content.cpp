#include "base/stamped_content.h"

#include "base/binary_file.h"

#include <utility>

namespace torquil {

bool StampedContent::takeIfUnchanged(const std::filesystem::path& path,
                                     std::vector<std::uint8_t>& out, FileStamp& readAs) {
    const bool same = kept() && stampOf(path) == stamp;
    if (same) {
        out = std::move(bytes);
        readAs = stamp;
    }
    bytes = {};
    stamp = {};
    return same;
}

bool readStampedContent(const std::filesystem::path& path, StampedContent& out) {
    out = {};
    const FileStamp before = stampOf(path);
    if (!before.exists) return false;
    auto read = readWholeFile(path);
    if (!read) return false;
    out.bytes = std::move(read).value();
    // A length the stamp does not share means a writer was at work during the read.
    if (static_cast<std::int64_t>(out.bytes.size()) != before.length || stampOf(path) != before) {
        out = {};
        return false;
    }
    out.stamp = before;
    return true;
}

} // namespace torquil
