#include "cars/car_names_io.h"

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "base/file_transaction.h"
#include "base/work_dir.h"
#include "cars/fxt.h"
#include "platform/format_context.h"
#include "platform/platform.h"
#include "style/style_file.h"

#include <algorithm>
#include <optional>

namespace torquil {

namespace {

constexpr const char* kFxtName = "ENGLISH.FXT";

// Lines of the decoded text: ended by CR or CR LF; a lone LF stays in the line.
std::vector<std::string> readLines(const std::vector<std::uint8_t>& bytes) {
    std::vector<std::string> lines;
    std::string line;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == 13) {
            lines.push_back(line);
            line.clear();
            if (i + 1 < bytes.size() && bytes[i + 1] == 10) ++i;
        } else {
            line.push_back(static_cast<char>(bytes[i]));
        }
    }
    if (!line.empty()) lines.push_back(line);
    return lines;
}

bool startsWith(const std::string& s, const std::string& prefix) {
    return s.size() >= prefix.size() && s.compare(0, prefix.size(), prefix) == 0;
}

// The line as it goes into the rebuilt text; nullopt drops it.
std::optional<std::string> rebuiltLine(const std::string& line, const CarNames& names) {
    // Too short for an entry, or no key: this also drops the two short lines that decoding makes
    // of the end marker of a file written here, so that the file does not grow with every save.
    if (line.size() < 4 || line.find('[') == std::string::npos ||
        line.find(']') == std::string::npos)
        return std::nullopt;
    if (startsWith(line, "[car")) {
        for (int i = 0; i < kCarNameCount; ++i) {
            const std::string& key = names.keys[static_cast<std::size_t>(i)];
            if (key.size() > 2 && startsWith(line, key))
                return key + names.names[static_cast<std::size_t>(i)];
        }
    }
    return line;
}

} // namespace

void rememberFxtState(CarNames& names, const fs::path& fxt) {
    names.fxtStamp = stampOf(fxt);
}

bool loadCarNames(CarNames& names, const StyleFileState& style, FormatContext& ctx) {
    Platform& platform = ctx.platform;
    names = CarNames{};
    const fs::path folder = style.dataFolder();
    const fs::path fxt = findFileNoCase(folder, kFxtName);
    std::error_code ec;
    if (fs::is_regular_file(fxt, ec)) {
        names.fromFxt = decodeFxtFile(fxt, names.decodedText, &names, platform);
        rememberFxtState(names, fxt);
        if (!names.fromFxt) return false;
        // An empty or damaged file decodes to a text without car entries: a rename would have
        // nowhere to go, so the file is left alone as if it were missing.
        if (std::none_of(names.keys.begin(), names.keys.end(),
                         [](const std::string& key) { return !key.empty(); })) {
            platform.message("Warning: " + fxt.string() + " holds no car names (empty or " +
                             "damaged).\rYou will not be able to save the real car names. " +
                             "(defaults names used)");
            names.fromFxt = false;
            names.decodedText.clear();
            fillBuiltInNames(names);
        }
        return true;
    }
    platform.message("Warning: ENGLISH.FXT was not with the style file in the\r" + folder.string() +
                     " directory.\r" +
                     "You will not be able to load or save the real car names. (defaults names "
                     "used)");
    fillBuiltInNames(names);
    return true;
}

bool buildCarNamesFxt(const CarNames& names, const StyleFileState& style, FormatContext& ctx,
                      std::vector<std::uint8_t>& fxt) {
    Platform& platform = ctx.platform;
    fxt.clear();
    if (!names.fromFxt) {
        platform.message(
            "Unable to reload:" + findFileNoCase(style.dataFolder(), kFxtName).string() + "\r" +
            "Can't save Car Names without it!");
        return false;
    }
    std::vector<std::uint8_t> text;
    text.reserve(names.decodedText.size() + 64);
    for (const std::string& line : readLines(names.decodedText)) {
        if (auto kept = rebuiltLine(line, names)) {
            text.insert(text.end(), kept->begin(), kept->end());
            text.push_back('\r');
            text.push_back('\n');
        }
    }
    fxt = encodeFxtWithProgress(text, platform);
    return true;
}

bool saveCarNames(CarNames& names, const StyleFileState& style, FormatContext& ctx) {
    Platform& platform = ctx.platform;
    std::vector<std::uint8_t> coded;
    if (!buildCarNamesFxt(names, style, ctx, coded)) return false;
    const fs::path fxt = findFileNoCase(style.dataFolder(), kFxtName);
    // Only over the file the names were read from, under its lock.
    const CommitFile files[] = {{fxt, coded, names.fxtStamp}};
    const CommitResult result = commitFiles(files);
    for (const std::string& found : foundBy(result)) platform.message(found);
    if (!result) {
        platform.message(std::string("Error occured during write of FXT file.") + "\r" +
                         result.message());
        return false;
    }
    rememberFxtState(names, fxt);
    platform.message(kCarNamesSavedNote);
    return true;
}

} // namespace torquil
