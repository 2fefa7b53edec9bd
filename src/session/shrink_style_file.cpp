#include "session/shrink_style_file.h"

#include "base/runtime_error.h"
#include "platform/platform.h"
#include "session/safe_replace.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace torquil {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kBlock = 1024;

struct FileCloser {
    void operator()(std::FILE* f) const {
        if (f) std::fclose(f);
    }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

FilePtr openStream(const fs::path& path, const char* mode) {
#ifdef _WIN32
    std::wstring wmode(mode, mode + std::char_traits<char>::length(mode));
    return FilePtr(_wfopen(path.c_str(), wmode.c_str()));
#else
    return FilePtr(std::fopen(path.c_str(), mode));
#endif
}

bool copyBytes(std::FILE* in, std::FILE* out, std::int64_t count) {
    std::vector<char> buffer(64 * kBlock);
    while (count > 0) {
        const auto want =
            static_cast<std::size_t>(std::min<std::int64_t>(count, std::int64_t(buffer.size())));
        if (std::fread(buffer.data(), 1, want, in) != want) return false;
        if (std::fwrite(buffer.data(), 1, want, out) != want) return false;
        count -= static_cast<std::int64_t>(want);
    }
    return true;
}

} // namespace

fs::path shrinkCopyPath(const fs::path& path) {
    fs::path copy = path;
    copy += "~";
    return copy;
}

int shrinkStyleFile(const fs::path& path, std::int64_t endPosition, Platform& platform,
                    const SaveCheckpoint& checkpoint) {
    std::error_code ec;
    const auto length = static_cast<std::int64_t>(fs::file_size(path, ec));
    if (ec) return err::FileNotFound;
    // "Not greater": a file whose length equals endPosition keeps the one byte past the sprite
    // numbers record, which the game's files carry.
    if (length <= endPosition) return err::None;
    // The copy holds endPosition - 1 bytes: everything up to and including the sprite numbers.
    const std::int64_t keep = endPosition - 1;
    if (keep < 1) return err::InvalidCall; // never cut a style file down to nothing

    ProgressSink& progress = platform.progress();
    progress.open(
        "Shrinking STYLE file",
        "From:" + std::to_string(length) + " to " + std::to_string(endPosition) + " bytes.", 10);
    const fs::path copy = shrinkCopyPath(path);
    bool copied = false;
    {
        FilePtr in = openStream(path, "rb");
        FilePtr out = in ? openStream(copy, "wb") : nullptr;
        if (in && out) {
            progress.setValue(4);
            // Whole 1024-byte blocks while more than a block is left, then the last bytes.
            const std::int64_t blocks = (keep - 1) / kBlock * kBlock;
            copied = copyBytes(in.get(), out.get(), blocks);
            progress.setValue(7);
            copied = copied && copyBytes(in.get(), out.get(), keep - blocks);
            copied = flushToDisk(out.get()) && copied;
            copied = std::fclose(out.release()) == 0 && copied;
        }
    }
    if (!copied) {
        fs::remove(copy, ec);
        progress.close();
        return err::PathFileAccess;
    }
    fs::permissions(copy, fs::status(path, ec).permissions(), ec);
    if (checkpoint) checkpoint("Shrink Copy Written");

    progress.setValue(9);
    // Never delete-then-rename: the copy replaces the style file in one step.
    if (!replaceFile(copy, path, ec)) {
        progress.close();
        return err::PathFileAccess;
    }
    progress.close();
    return err::None;
}

} // namespace torquil
