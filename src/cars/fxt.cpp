#include "cars/fxt.h"

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "platform/platform.h"
#include "platform/progress_scope.h"

#include <algorithm>
#include <fstream>

namespace torquil {

namespace {

constexpr std::uint8_t kEscape = 196;
constexpr std::size_t kBlock = 1024;
constexpr int kProgressEvery = 100;
// "[]" + 0x19 as an entry and "[]" without its end: the end of every file written here.
constexpr std::array<std::uint8_t, 6> kEndMarker{0x5C, 0x5E, 0x1A, 0x01, 0x5C, 0x5E};

// The position after the block that holds byte `index` of the file, where block-wise reading
// stands after that byte (1-based, capped at the end of the file).
std::int64_t positionAfterBlock(std::size_t index, std::size_t length) {
    const std::size_t block = (index - kFxtKey.size()) / kBlock;
    return static_cast<std::int64_t>(std::min(kFxtKey.size() + (block + 1) * kBlock, length)) + 1;
}

FxtProgress percentOf(ProgressScope& scope, Platform& platform, std::size_t length) {
    return [&scope, &platform, length](std::int64_t position) {
        if (length == 0) return;
        scope.setValue(static_cast<int>(
            std::min<std::int64_t>(100, position * 100 / static_cast<std::int64_t>(length))));
        platform.doEvents();
    };
}

} // namespace

void takeCarName(const std::string& entry, CarNames& names) {
    if (entry.size() < 5 || entry[4] < '0' || entry[4] > '9') return;
    const std::size_t bracket = entry.find(']');
    if (bracket == std::string::npos || bracket < 5) return;
    // The number is read as far as its digits go: "12x" reads as 12.
    long number = 0;
    for (std::size_t i = 4; i < bracket && entry[i] >= '0' && entry[i] <= '9'; ++i) {
        number = number * 10 + (entry[i] - '0');
        if (number > kCarNameCount) return;
    }
    if (number < 0 || number >= kCarNameCount) return;
    names.keys[static_cast<std::size_t>(number)] = entry.substr(0, bracket + 1);
    names.names[static_cast<std::size_t>(number)] = entry.substr(bracket + 1);
}

std::vector<std::uint8_t> decodeFxtBytes(std::span<const std::uint8_t> coded, CarNames* names,
                                         const FxtProgress& progress) {
    std::vector<std::uint8_t> text;
    text.reserve(coded.size() + coded.size() / 16);
    // The key covers the first eight bytes whatever they hold, so a first entry of eight bytes or
    // less runs into the next line. A file shorter than the key decodes its missing bytes as
    // zeros, as reading past the end gives.
    for (std::size_t i = 0; i < kFxtKey.size(); ++i)
        text.push_back(static_cast<std::uint8_t>((i < coded.size() ? coded[i] : 0) + kFxtKey[i]));

    std::string line;
    std::uint8_t previous = 0;
    int entries = 0;
    auto endLine = [&] {
        text.insert(text.end(), line.begin(), line.end());
        text.push_back(13);
        text.push_back(10);
    };
    for (std::size_t i = kFxtKey.size(); i < coded.size(); ++i) {
        const std::uint8_t b = coded[i];
        // The byte after an escape is taken as it is, even when it is 1, 196 or 255: the test is
        // on the byte read before, not on whether that one was used up as an escape.
        if (previous == kEscape) {
            line.push_back(static_cast<char>(static_cast<std::uint8_t>(b + 63)));
        } else if (b == kEscape || b == 255) {
            // skipped
        } else if (b != 1) {
            line.push_back(static_cast<char>(static_cast<std::uint8_t>(b - 1)));
        } else {
            if (!line.empty()) {
                endLine();
                if (names && line.size() > 5 && line.compare(1, 3, "car") == 0)
                    takeCarName(line, *names);
                if (++entries % kProgressEvery == 0 && progress)
                    progress(positionAfterBlock(i, coded.size()));
            }
            line.clear();
        }
        previous = b;
    }
    if (!line.empty()) endLine();
    return text;
}

std::vector<std::uint8_t> encodeFxtBytes(std::span<const std::uint8_t> text,
                                         const FxtProgress& progress) {
    std::vector<std::uint8_t> coded;
    coded.reserve(text.size() + kEndMarker.size());
    for (std::size_t i = 0; i < kFxtKey.size(); ++i)
        coded.push_back(static_cast<std::uint8_t>((i < text.size() ? text[i] : 0) - kFxtKey[i]));

    std::vector<std::uint8_t> entry;
    int lines = 0;
    for (std::size_t i = kFxtKey.size(); i < text.size(); ++i) {
        std::uint8_t c = text[i];
        if (c > 191) {
            entry.push_back(kEscape);
            c = static_cast<std::uint8_t>(c - 64); // and + 1 below, like every other byte
        }
        if (c == 10) {
            if (!entry.empty()) {
                coded.insert(coded.end(), entry.begin(), entry.end());
                coded.push_back(1);
            }
            entry.clear();
            if (++lines % kProgressEvery == 0 && progress)
                progress(positionAfterBlock(i, text.size()));
        } else if (c != 13) {
            entry.push_back(static_cast<std::uint8_t>(c + 1));
        }
    }
    // A last line without its line feed is written without the entry's end.
    coded.insert(coded.end(), entry.begin(), entry.end());
    coded.insert(coded.end(), kEndMarker.begin(), kEndMarker.end());
    return coded;
}

bool decodeFxtFile(const fs::path& fxt, std::vector<std::uint8_t>& text, CarNames* names,
                   Platform& platform) {
    text.clear();
    std::error_code ec;
    if (!fs::is_regular_file(fxt, ec)) {
        platform.message("Unable to open :" + fxt.string());
        return false;
    }
    bool ok = false;
    {
        ProgressScope progress(platform.progress(), "Reading FXT file", "Reading Car Names...",
                               100);
        if (const auto coded = readWholeFile(fxt)) {
            text = decodeFxtBytes(*coded, names, percentOf(progress, platform, coded->size()));
            ok = true;
        }
    }
    if (!ok) platform.message("Error occured during load of FXT file.");
    return ok;
}

std::vector<std::uint8_t> encodeFxtWithProgress(std::span<const std::uint8_t> text,
                                                Platform& platform) {
    ProgressScope progress(platform.progress(), "Writing FXT file", "Writing New Car Names...",
                           100);
    return encodeFxtBytes(text, percentOf(progress, platform, text.size()));
}

bool fxt2txt(const fs::path& fxt, const fs::path& txt, CarNames* names, Platform& platform) {
    std::vector<std::uint8_t> text;
    if (!decodeFxtFile(fxt, text, names, platform)) return false;
    if (const ReplaceResult written = replaceFileAtomically(txt, text); !written) {
        platform.message(std::string("Error occured during load of FXT file.") + "\r" +
                         "The system said: " + written.error().cause + ".");
        return false;
    }
    return true;
}

bool txt2fxt(const fs::path& txt, const fs::path& fxt, Platform& platform,
             const CommitOptions& commit) {
    std::error_code ec;
    if (!fs::is_regular_file(txt, ec)) {
        platform.message("Unable to open :" + txt.string());
        return false;
    }
    // A save of this file that was cut short is dealt with before the file is looked at.
    const fs::path target[] = {fxt};
    const RecoveryReport recovered = recoverFiles(target, commit.program);
    for (const std::string& text : recovered.found) platform.message(text);
    // The coded file as it is now: replaced only if no other run replaces it meanwhile.
    const FileStamp before = stampOf(fxt);
    const auto readText = readWholeFile(txt);
    if (!readText) {
        platform.message("Error occured during write of FXT file.");
        return false;
    }
    const std::vector<std::uint8_t>& text = *readText;
    const std::vector<std::uint8_t> coded = encodeFxtWithProgress(text, platform);
    const CommitFile files[] = {{fxt, coded, before}};
    const CommitResult result = commitFiles(files, commit);
    for (const std::string& found : foundBy(result)) platform.message(found);
    if (!result) {
        platform.message(std::string("Error occured during write of FXT file.") + "\r" +
                         result.message());
        return false;
    }
    return true;
}

} // namespace torquil
