// Writing a GC3 pack: the byte runs of a changed file against its unmodified one, and the pack
// built in memory, read back and checked before it replaces the old one.

#include "exchange/gc3.h"

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "base/crc32.h"
#include "base/file_transaction.h"
#include "platform/platform.h"
#include "style/level_name.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace torquil {

namespace fs = std::filesystem;

namespace {

constexpr const char* kGc3WriteError = "Error writing GC3 file.";
constexpr int kBlocksPerProgressStep = 50;

// The run being gathered by diffFiles.
struct OpenRun {
    std::int32_t position = 0;
    std::vector<std::uint8_t> data;
    bool open() const { return !data.empty(); }
};

void writeRun(BinaryFile& pack, OpenRun& run) {
    pack.writeI32(run.position);
    pack.writeI32(static_cast<std::int32_t>(run.data.size()));
    pack.write(run.data);
    run.data.clear();
}

int levelOf(const fs::path& style) {
    return mapNumberFromFileName(style.filename().string());
}

bool fitsInt32(std::int64_t v) {
    return v >= 0 && v <= std::numeric_limits<std::int32_t>::max();
}

} // namespace

void diffFiles(BinaryFile& modified, BinaryFile& original, BinaryFile& pack, Platform& platform) {
    const std::int64_t modLength = modified.length(), origLength = original.length();
    std::vector<std::uint8_t> mod(kGc3BlockSize), orig(kGc3BlockSize);
    OpenRun run;
    std::int64_t blocks = 0;
    modified.seek(1);
    original.seek(1);
    for (std::int64_t start = 0; start < modLength; start += kGc3BlockSize) {
        // A shorter last block of either file is read at its remaining length.
        const auto modCount =
            static_cast<std::size_t>(std::min<std::int64_t>(kGc3BlockSize, modLength - start));
        const auto origCount = static_cast<std::size_t>(
            std::clamp<std::int64_t>(origLength - start, 0, kGc3BlockSize));
        modified.read(std::span<std::uint8_t>(mod.data(), modCount));
        if (origCount > 0) original.read(std::span<std::uint8_t>(orig.data(), origCount));
        // A block that both files hold alike, with no run open, gives no run: compared at once.
        const bool alike = !run.open() && origCount == modCount &&
                           std::memcmp(mod.data(), orig.data(), modCount) == 0;
        for (std::size_t i = alike ? modCount : 0; i < modCount; ++i) {
            const bool take = i >= origCount || mod[i] != orig[i] ||
                              (run.open() && run.data.size() % kGc3RunQuantum != 0);
            if (take) {
                run.data.push_back(mod[i]);
                run.position = static_cast<std::int32_t>(start + static_cast<std::int64_t>(i) + 1);
            } else if (run.open()) {
                writeRun(pack, run);
            }
        }
        if (++blocks % kBlocksPerProgressStep == 0) {
            platform.progress().setValue(
                static_cast<int>((start + static_cast<std::int64_t>(modCount)) * 100 / modLength));
            platform.doEvents();
        }
    }
    if (run.open()) writeRun(pack, run);
}

bool writeGC3(const fs::path& modStyle, const fs::path& origStyle, const fs::path& modFxt,
              const fs::path& origFxt, const fs::path& pack, Platform& platform,
              const Gc3Clock& clock, const Gc3ResultCheck& check) {
    BusyCursor busy(platform);
    std::error_code ec;
    for (const fs::path* input : {&modStyle, &origStyle, &modFxt, &origFxt}) {
        if (!fs::is_regular_file(*input, ec)) {
            platform.message(std::string(kGc3WriteError) + "\r" + input->string() +
                             (fs::exists(*input, ec) ? " is not a file." : " does not exist."));
            return false;
        }
    }
    // An existing pack stays as it is until the new one is complete: it is replaced in one
    // rename at the end, never deleted first.
    const int level = levelOf(modStyle);
    if (level != levelOf(origStyle)) {
        platform.message(
            "Writing of GC3 cannot be accomplished on styles from two different levels.");
        return false;
    }

    // The four files are read whole: the pack is checked against them before it is written.
    std::vector<std::uint8_t> inputs[4];
    const fs::path* paths[4] = {&modStyle, &origStyle, &modFxt, &origFxt};
    for (int i = 0; i < 4; ++i) {
        auto read = readWholeFile(*paths[i]);
        if (read) inputs[i] = std::move(read).value();
        if (!read) {
            platform.message(std::string(kGc3WriteError) + "\r" + "Unable to read " +
                             paths[i]->string() + ".");
            return false;
        }
        if (!fitsInt32(static_cast<std::int64_t>(inputs[i].size()))) {
            platform.message(std::string(kGc3WriteError) + "\r" + paths[i]->string() +
                             " is larger than a GC3 pack can describe (2 GB).");
            return false;
        }
    }
    auto& [modStyleBytes, origStyleBytes, modFxtBytes, origFxtBytes] = inputs;

    ErrorState errors;
    BinaryFile out(errors);
    // The pack is built in memory and written whole in one replace.
    out.openInMemory(pack, {});
    Gc3Header header;
    header.encrypt = gc3EncryptByte(clock ? clock() : 0.0);
    header.stylenum = static_cast<std::uint8_t>(level);
    out.write(encodeGc3Header(header));

    ProgressSink& progress = platform.progress();
    progress.open("Writing GC3 file", "Writing...", 100);
    bool sizesFit = true;
    auto diffPair = [&](std::vector<std::uint8_t>& mod, std::vector<std::uint8_t>& orig,
                        const fs::path& modName, const fs::path& origName, std::int32_t& position,
                        std::int32_t& positionEnd, std::int32_t& lof) {
        BinaryFile m(errors), o(errors);
        m.openBytes(mod, modName);
        o.openBytes(orig, origName);
        lof = static_cast<std::int32_t>(m.length());
        position = static_cast<std::int32_t>(out.position());
        diffFiles(m, o, out, platform);
        sizesFit = sizesFit && fitsInt32(out.position() - 1);
        positionEnd = static_cast<std::int32_t>(out.position() - 1);
    };
    diffPair(modStyleBytes, origStyleBytes, modStyle, origStyle, header.StyleDataPosition,
             header.StyleDataPositionEnd, header.StyleDataLOF);
    diffPair(modFxtBytes, origFxtBytes, modFxt, origFxt, header.FXTDataPosition,
             header.FXTDataPositionEnd, header.FXTDataLOF);
    out.seek(1);
    out.write(encodeGc3Header(header));
    progress.close();
    out.close();
    std::vector<std::uint8_t> bytes = out.takeBytes();
    if (errors.hasPending() || !sizesFit) {
        platform.message(std::string(kGc3WriteError) + "\r" +
                         (sizesFit ? "Run-time error " + std::to_string(errors.pending()) +
                                         " while the pack was built."
                                   : std::string("The pack would be larger than 2 GB.")));
        return false;
    }

    // Read back: the pack as any reader sees it, applied to the originals, must give the
    // modified files, and they must pass the editor's own checks.
    Gc3Pack parsed;
    std::string why;
    std::vector<std::uint8_t> styleResult, fxtResult;
    bool readBack = false;
    if (Result<Gc3Pack> read = parseGc3(bytes); !read) {
        why = read.message();
    } else {
        parsed = std::move(read).value();
        auto style =
            rebuildFromRuns(origStyleBytes, parsed.styleRecords, parsed.header.StyleDataLOF);
        auto fxt = rebuildFromRuns(origFxtBytes, parsed.fxtRecords, parsed.header.FXTDataLOF);
        readBack = style && fxt;
        if (!style)
            why = style.message();
        else if (!fxt)
            why = fxt.message();
        else {
            styleResult = std::move(style).value();
            fxtResult = std::move(fxt).value();
        }
    }
    if (!readBack || styleResult != modStyleBytes || fxtResult != modFxtBytes) {
        platform.message(std::string(kGc3WriteError) + "\r" +
                         "The pack read back does not give the changed files" +
                         (why.empty() ? std::string(".") : ": " + why + "."));
        return false;
    }
    if (check) {
        if (const std::string refused = check(styleResult, fxtResult); !refused.empty()) {
            platform.message(std::string(kGc3WriteError) + "\r" + refused);
            return false;
        }
    }

    const std::vector<std::uint8_t> originals =
        encodeGc3Originals(parsed, origStyleBytes, origFxtBytes);
    bytes.insert(bytes.end(), originals.begin(), originals.end());
    const std::vector<std::uint8_t> layout =
        encodeGc3StyleLayout(origStyleBytes, isG24FileName(origStyle.filename().string()));
    bytes.insert(bytes.end(), layout.begin(), layout.end());
    Gc3Trailer trailer;
    trailer.originalStyle = crc32(origStyleBytes);
    trailer.originalFxt = crc32(origFxtBytes);
    trailer.resultStyle = crc32(modStyleBytes);
    trailer.resultFxt = crc32(modFxtBytes);
    const std::vector<std::uint8_t> tail = encodeGc3Trailer(trailer);
    bytes.insert(bytes.end(), tail.begin(), tail.end());
    // Side files that a killed write of this pack left beside it are removed first, and named.
    const fs::path packs[] = {pack};
    const RecoveryReport leftovers = recoverFiles(packs);
    for (const std::string& found : leftovers.found) platform.message(found);
    if (!leftovers.busy.empty()) {
        platform.message(std::string(kGc3WriteError) + "\r" + leftovers.busy.front());
        return false;
    }
    if (const ReplaceResult written = replaceFileAtomically(pack, bytes); !written) {
        platform.message(std::string(kGc3WriteError) + "\r" + pack.string() + ": " +
                         written.error().cause + ".");
        return false;
    }
    return true;
}

} // namespace torquil
