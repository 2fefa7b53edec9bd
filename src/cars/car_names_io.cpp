#include "cars/car_names_io.h"

#include "base/binary_file.h"
#include "base/work_dir.h"
#include "cars/fxt.h"
#include "platform/format_context.h"
#include "platform/platform.h"
#include "style/style_file.h"

#include <fstream>
#include <optional>

namespace torquil {

namespace {

constexpr const char* kFxtName = "ENGLISH.FXT";
constexpr const char* kDecodedName = "~TMP.TXT";
constexpr const char* kRebuiltName = "~TMPN.TXT";

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

bool loadCarNames(CarNames& names, const StyleFileState& style, FormatContext& ctx) {
    Platform& platform = ctx.platform;
    names = CarNames{};
    const fs::path folder = style.dataFolder();
    const fs::path fxt = findFileNoCase(folder, kFxtName);
    const fs::path decoded = ctx.options.workPath(kDecodedName);
    std::error_code ec;
    if (fs::is_regular_file(fxt, ec)) {
        names.fromFxt = fxt2txt(fxt, decoded, &names, platform);
        return names.fromFxt;
    }
    platform.message("Warning: ENGLISH.FXT was not with the style file in the\r" + folder.string() +
                     " directory.\r" +
                     "You will not be able to load or save the real car names. (defaults names "
                     "used)");
    fillBuiltInNames(names);
    // A decoded copy left over from another style must not be saved into this one's folder.
    fs::remove(decoded, ec);
    return true;
}

bool saveCarNames(const CarNames& names, const StyleFileState& style, FormatContext& ctx) {
    Platform& platform = ctx.platform;
    const fs::path decoded = ctx.options.workPath(kDecodedName);
    const fs::path rebuilt = ctx.options.workPath(kRebuiltName);
    const fs::path fxt = findFileNoCase(style.dataFolder(), kFxtName);
    std::error_code ec;
    std::vector<std::uint8_t> bytes;
    if (!fs::is_regular_file(decoded, ec) || !readWholeFile(decoded, bytes)) {
        platform.message("Unable to reload:" + decoded.string() + "\r" +
                         "Can't save Car Names without it!");
        return false;
    }
    {
        std::ofstream out(rebuilt, std::ios::binary | std::ios::trunc);
        for (const std::string& line : readLines(bytes))
            if (auto kept = rebuiltLine(line, names)) out << *kept << "\r\n";
        if (!out) {
            platform.message("Error occured during write of FXT file.");
            return false;
        }
    }
    if (!txt2fxt(rebuilt, fxt, platform)) return false;
    platform.message("Note: Car name changes are not accepted by KRB until it is restarted.");
    return true;
}

} // namespace torquil
