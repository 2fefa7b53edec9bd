#include "exchange/gc3.h"

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "base/crc32.h"
#include "base/file_transaction.h"
#include "platform/platform.h"
#include "style/level_name.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <ctime>
#include <fstream>
#include <limits>
#include <optional>

namespace torquil {

namespace fs = std::filesystem;

namespace {

constexpr const char* kWriteError = "Error writing GC3 file.";
constexpr const char* kReadError = "Error reading GC3 file.";
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

// Reads the runs between the 1-based positions first..last of the pack.
bool parseRecords(const std::vector<std::uint8_t>& bytes, std::int32_t first, std::int32_t last,
                  std::vector<Gc3Record>& out, std::string& error) {
    const auto size = static_cast<std::int64_t>(bytes.size());
    if (first < 1 || std::int64_t{last} < std::int64_t{first} - 1 || last > size) {
        error = "record range " + std::to_string(first) + ".." + std::to_string(last) +
                " lies outside the pack";
        return false;
    }
    std::int64_t at = first; // 1-based
    while (at <= last) {
        if (at + 7 > last) {
            error = "a record head at " + std::to_string(at) + " is cut short";
            return false;
        }
        Gc3Record r;
        r.position = getI32(&bytes[static_cast<std::size_t>(at - 1)]);
        r.length = getI32(&bytes[static_cast<std::size_t>(at + 3)]);
        at += 8;
        if (r.length < 1 || at + r.length - 1 > last || r.first() < 1) {
            error = "the record at " + std::to_string(at - 8) + " is damaged";
            return false;
        }
        const auto begin = bytes.begin() + (at - 1);
        r.data.assign(begin, begin + r.length);
        at += r.length;
        out.push_back(std::move(r));
    }
    return true;
}

enum class ApplyFault { None, TooShort, PastLength };

// The modified file rebuilt from the unmodified one and the runs, `length` bytes long. Bytes past
// the unmodified file's end exist only in the runs, so each of them must be covered by one.
ApplyFault rebuild(const std::vector<std::uint8_t>& original, const std::vector<Gc3Record>& runs,
                   std::int32_t length, std::vector<std::uint8_t>& out) {
    if (length < 0) return ApplyFault::PastLength;
    std::int64_t runBytes = 0;
    for (const Gc3Record& r : runs) {
        if (r.position > length) return ApplyFault::PastLength;
        runBytes += r.length;
    }
    const auto originalSize = static_cast<std::int64_t>(original.size());
    const std::int64_t grown = std::max<std::int64_t>(0, length - originalSize);
    if (grown > runBytes) return ApplyFault::TooShort;

    out.assign(original.begin(), original.begin() + std::min<std::int64_t>(originalSize, length));
    out.resize(static_cast<std::size_t>(length), 0);
    std::vector<bool> covered(static_cast<std::size_t>(grown), false);
    for (const Gc3Record& r : runs) {
        const std::int64_t first0 = r.first() - 1;
        std::copy(r.data.begin(), r.data.end(), out.begin() + first0);
        for (std::int64_t i = std::max(first0, originalSize); i < r.position; ++i)
            covered[static_cast<std::size_t>(i - originalSize)] = true;
    }
    if (std::find(covered.begin(), covered.end(), false) != covered.end())
        return ApplyFault::TooShort;
    return ApplyFault::None;
}

} // namespace

bool rebuildFromRuns(const std::vector<std::uint8_t>& original, const std::vector<Gc3Record>& runs,
                     std::int32_t length, std::vector<std::uint8_t>& out, std::string& error) {
    switch (rebuild(original, runs, length, out)) {
    case ApplyFault::None:
        return true;
    case ApplyFault::TooShort:
        error = "the file is too short for this GC3 car pack";
        return false;
    case ApplyFault::PastLength:
        error = "this GC3 car pack has a run past the recorded length";
        return false;
    }
    return false;
}

std::vector<std::uint8_t> encodeGc3Header(const Gc3Header& h) {
    std::vector<std::uint8_t> b(kGc3HeaderSize, 0);
    for (std::size_t i = 0; i < 3 && i < h.fileType.size(); ++i)
        b[i] = static_cast<std::uint8_t>(h.fileType[i]);
    putI16(&b[3], h.ver);
    b[5] = h.encrypt;
    b[6] = h.stylenum;
    const std::int32_t fields[] = {h.StyleDataPosition, h.StyleDataPositionEnd, h.StyleDataLOF,
                                   h.FXTDataPosition,   h.FXTDataPositionEnd,   h.FXTDataLOF};
    for (std::size_t i = 0; i < 6; ++i) putI32(&b[7 + 4 * i], fields[i]);
    return b;
}

Gc3Header decodeGc3Header(const std::uint8_t* b) {
    Gc3Header h;
    h.fileType.assign(reinterpret_cast<const char*>(b), 3);
    h.ver = getI16(b + 3);
    h.encrypt = b[5];
    h.stylenum = b[6];
    h.StyleDataPosition = getI32(b + 7);
    h.StyleDataPositionEnd = getI32(b + 11);
    h.StyleDataLOF = getI32(b + 15);
    h.FXTDataPosition = getI32(b + 19);
    h.FXTDataPositionEnd = getI32(b + 23);
    h.FXTDataLOF = getI32(b + 27);
    return h;
}

double secondsSinceMidnight() {
    const auto now = std::chrono::system_clock::now();
    const std::time_t t = std::chrono::system_clock::to_time_t(now);
    std::tm local{};
#ifdef _WIN32
    localtime_s(&local, &t);
#else
    localtime_r(&t, &local);
#endif
    const auto fraction =
        std::chrono::duration<double>(now - std::chrono::system_clock::from_time_t(t)).count();
    return local.tm_hour * 3600.0 + local.tm_min * 60.0 + local.tm_sec + fraction;
}

std::uint8_t gc3EncryptByte(double seconds) {
    const double whole = std::nearbyint(seconds); // ties to even
    const auto n = static_cast<long long>(std::clamp(whole, 0.0, 86400.0));
    return static_cast<std::uint8_t>(n % 255);
}

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
            platform.message(std::string(kWriteError) + "\r" + input->string() +
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
        if (!readWholeFile(*paths[i], inputs[i])) {
            platform.message(std::string(kWriteError) + "\r" + "Unable to read " +
                             paths[i]->string() + ".");
            return false;
        }
        if (!fitsInt32(static_cast<std::int64_t>(inputs[i].size()))) {
            platform.message(std::string(kWriteError) + "\r" + paths[i]->string() +
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
        platform.message(std::string(kWriteError) + "\r" +
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
    if (!parseGc3(bytes, parsed, why) ||
        !rebuildFromRuns(origStyleBytes, parsed.styleRecords, parsed.header.StyleDataLOF,
                         styleResult, why) ||
        !rebuildFromRuns(origFxtBytes, parsed.fxtRecords, parsed.header.FXTDataLOF, fxtResult,
                         why) ||
        styleResult != modStyleBytes || fxtResult != modFxtBytes) {
        platform.message(std::string(kWriteError) + "\r" +
                         "The pack read back does not give the changed files" +
                         (why.empty() ? std::string(".") : ": " + why + "."));
        return false;
    }
    if (check) {
        if (const std::string refused = check(styleResult, fxtResult); !refused.empty()) {
            platform.message(std::string(kWriteError) + "\r" + refused);
            return false;
        }
    }

    const std::vector<std::uint8_t> originals =
        encodeGc3Originals(parsed, origStyleBytes, origFxtBytes);
    bytes.insert(bytes.end(), originals.begin(), originals.end());
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
        platform.message(std::string(kWriteError) + "\r" + leftovers.busy.front());
        return false;
    }
    if (const ReplaceFailure failure = replaceFileAtomically(pack, bytes)) {
        platform.message(std::string(kWriteError) + "\r" + pack.string() + ": " +
                         describeCause(failure.cause) + ".");
        return false;
    }
    return true;
}

std::vector<std::uint8_t> encodeGc3Trailer(const Gc3Trailer& t) {
    std::vector<std::uint8_t> b(kGc3TrailerSize, 0);
    std::copy(kGc3TrailerMagic.begin(), kGc3TrailerMagic.end(), b.begin());
    const std::uint32_t crcs[] = {t.originalStyle, t.originalFxt, t.resultStyle, t.resultFxt};
    for (std::size_t i = 0; i < 4; ++i) putI32(&b[4 + 4 * i], static_cast<std::int32_t>(crcs[i]));
    return b;
}

namespace {

// The 1-based position of the last byte of a pack's records (the header's end when it has none).
std::int64_t recordsEnd(const Gc3Header& h) {
    return std::max<std::int64_t>(
        {std::int64_t{kGc3HeaderSize}, h.StyleDataPositionEnd, h.FXTDataPositionEnd});
}

// The unmodified bytes under one run: from its first position to its last or the file's end.
std::size_t originalCount(const Gc3Record& r, std::int64_t originalLength) {
    return static_cast<std::size_t>(std::clamp<std::int64_t>(
        std::min<std::int64_t>(r.position, originalLength) - r.first() + 1, 0, r.length));
}

std::size_t tailCount(std::int64_t originalLength, std::int32_t resultLength) {
    return static_cast<std::size_t>(std::max<std::int64_t>(0, originalLength - resultLength));
}

} // namespace

std::optional<Gc3Trailer> findGc3Trailer(const std::vector<std::uint8_t>& bytes,
                                         const Gc3Header& h) {
    // The trailer ends the pack; the unmodified bytes, when kept, lie between it and the records.
    const std::int64_t records = recordsEnd(h);
    const auto size = static_cast<std::int64_t>(bytes.size());
    if (size < records + kGc3TrailerSize) return std::nullopt;
    if (size != records + kGc3TrailerSize &&
        (size < records + 4 + kGc3TrailerSize ||
         !std::equal(kGc3OriginalsMagic.begin(), kGc3OriginalsMagic.end(), bytes.data() + records)))
        return std::nullopt;
    const std::uint8_t* t = bytes.data() + size - kGc3TrailerSize;
    if (!std::equal(kGc3TrailerMagic.begin(), kGc3TrailerMagic.end(), t)) return std::nullopt;
    Gc3Trailer trailer;
    trailer.originalStyle = static_cast<std::uint32_t>(getI32(t + 4));
    trailer.originalFxt = static_cast<std::uint32_t>(getI32(t + 8));
    trailer.resultStyle = static_cast<std::uint32_t>(getI32(t + 12));
    trailer.resultFxt = static_cast<std::uint32_t>(getI32(t + 16));
    return trailer;
}

std::vector<std::uint8_t> encodeGc3Originals(const Gc3Pack& pack,
                                             const std::vector<std::uint8_t>& style,
                                             const std::vector<std::uint8_t>& fxt) {
    std::vector<std::uint8_t> out(kGc3OriginalsMagic.begin(), kGc3OriginalsMagic.end());
    out.resize(12);
    putI32(&out[4], static_cast<std::int32_t>(style.size()));
    putI32(&out[8], static_cast<std::int32_t>(fxt.size()));
    auto add = [&out](const std::vector<Gc3Record>& runs, const std::vector<std::uint8_t>& file,
                      std::int32_t resultLength) {
        const auto length = static_cast<std::int64_t>(file.size());
        for (const Gc3Record& r : runs) {
            const auto begin = file.begin() + (r.first() - 1);
            out.insert(out.end(), begin,
                       begin + static_cast<std::ptrdiff_t>(originalCount(r, length)));
        }
        const std::size_t tail = tailCount(length, resultLength);
        out.insert(out.end(), file.end() - static_cast<std::ptrdiff_t>(tail), file.end());
    };
    add(pack.styleRecords, style, pack.header.StyleDataLOF);
    add(pack.fxtRecords, fxt, pack.header.FXTDataLOF);
    return out;
}

std::optional<Gc3Originals> findGc3Originals(const std::vector<std::uint8_t>& bytes,
                                             const Gc3Pack& pack) {
    const std::int64_t at = recordsEnd(pack.header); // 0-based start of the block
    const std::int64_t end = static_cast<std::int64_t>(bytes.size()) - kGc3TrailerSize;
    if (end < at + 12 || !findGc3Trailer(bytes, pack.header) ||
        !std::equal(kGc3OriginalsMagic.begin(), kGc3OriginalsMagic.end(), bytes.data() + at))
        return std::nullopt;
    Gc3Originals o;
    o.styleLength = getI32(bytes.data() + at + 4);
    o.fxtLength = getI32(bytes.data() + at + 8);
    if (o.styleLength < 0 || o.fxtLength < 0) return std::nullopt;
    std::int64_t next = at + 12;
    bool fits = true;
    auto take = [&](std::size_t count, std::vector<std::uint8_t>& into) {
        if (!fits || next + static_cast<std::int64_t>(count) > end) {
            fits = false;
            return;
        }
        into.assign(bytes.begin() + next,
                    bytes.begin() + next + static_cast<std::ptrdiff_t>(count));
        next += static_cast<std::int64_t>(count);
    };
    auto read = [&](const std::vector<Gc3Record>& runs, std::int32_t length, std::int32_t result,
                    std::vector<std::vector<std::uint8_t>>& perRun,
                    std::vector<std::uint8_t>& tail) {
        for (const Gc3Record& r : runs) take(originalCount(r, length), perRun.emplace_back());
        take(tailCount(length, result), tail);
    };
    read(pack.styleRecords, o.styleLength, pack.header.StyleDataLOF, o.style, o.styleTail);
    read(pack.fxtRecords, o.fxtLength, pack.header.FXTDataLOF, o.fxt, o.fxtTail);
    if (!fits || next != end) return std::nullopt;
    return o;
}

bool readGC3(const fs::path& pack, Gc3Header& header, Platform& platform) {
    ErrorState errors;
    BinaryFile in(errors);
    std::error_code ec;
    if (!fs::is_regular_file(pack, ec) || !in.open(pack, BinaryFile::Mode::Read) ||
        in.length() < kGc3HeaderSize) {
        platform.message(kReadError);
        return false;
    }
    std::uint8_t bytes[kGc3HeaderSize];
    in.read(bytes);
    header = decodeGc3Header(bytes);
    return !errors.hasPending();
}

bool parseGc3(const std::vector<std::uint8_t>& bytes, Gc3Pack& pack, std::string& error) {
    pack = Gc3Pack{};
    if (bytes.size() < static_cast<std::size_t>(kGc3HeaderSize)) {
        error = "the pack is shorter than its header";
        return false;
    }
    pack.header = decodeGc3Header(bytes.data());
    if (pack.header.fileType != "GC3") {
        error = "the pack does not begin with GC3";
        return false;
    }
    const Gc3Header& h = pack.header;
    return parseRecords(bytes, h.StyleDataPosition, h.StyleDataPositionEnd, pack.styleRecords,
                        error) &&
           parseRecords(bytes, h.FXTDataPosition, h.FXTDataPositionEnd, pack.fxtRecords, error);
}

Gc3Applied checkGc3Fit(const Gc3Pack& pack, const std::optional<Gc3Trailer>& trailer,
                       const Gc3FileBytes& style, const Gc3FileBytes& fxt,
                       std::vector<std::uint8_t>* styleResult,
                       std::vector<std::uint8_t>* fxtResult) {
    auto refused = [](Gc3Outcome outcome, std::string message) {
        return Gc3Applied{outcome, std::move(message)};
    };
    // Torquil's packs say what they were made against and what they make.
    if (trailer) {
        const std::uint32_t styleCrc = style.checksum();
        const std::uint32_t fxtCrc = fxt.checksum();
        if (styleCrc == trailer->resultStyle && fxtCrc == trailer->resultFxt)
            return refused(Gc3Outcome::AlreadyApplied,
                           "This GC3 car pack is already applied to " + style.path.string() +
                               " and " + fxt.path.string() + ": nothing was written.");
        const bool styleFits = styleCrc == trailer->originalStyle;
        const bool fxtFits = fxtCrc == trailer->originalFxt;
        if (!styleFits || !fxtFits) {
            std::string which = !styleFits && !fxtFits
                                    ? style.path.string() + " and " + fxt.path.string()
                                : !styleFits ? style.path.string()
                                             : fxt.path.string();
            return refused(Gc3Outcome::FilesDiffer,
                           "This GC3 car pack was made against other files than " + which +
                               " (their contents differ from the files it was made from)." + "\r" +
                               "Nothing was written.");
        }
    }
    struct Target {
        const Gc3FileBytes& file;
        const std::vector<Gc3Record>& runs;
        std::int32_t length;
        std::vector<std::uint8_t> result;
    };
    Target targets[] = {{style, pack.styleRecords, pack.header.StyleDataLOF, {}},
                        {fxt, pack.fxtRecords, pack.header.FXTDataLOF, {}}};
    for (Target& t : targets) {
        switch (rebuild(t.file.bytes, t.runs, t.length, t.result)) {
        case ApplyFault::None:
            break;
        case ApplyFault::TooShort:
            return refused(Gc3Outcome::FilesDiffer, "The file " + t.file.path.string() +
                                                        " is too short for this GC3 car pack.");
        case ApplyFault::PastLength:
            return refused(Gc3Outcome::Damaged, "This GC3 car pack has a run past the recorded " +
                                                    std::string("length of ") +
                                                    t.file.path.string() + ".");
        }
    }
    if (trailer && (crc32(targets[0].result) != trailer->resultStyle ||
                    crc32(targets[1].result) != trailer->resultFxt))
        return refused(Gc3Outcome::Damaged,
                       "This GC3 car pack is damaged: applied, it does not give the files it was "
                       "made from. Nothing was written.");
    if (styleResult) *styleResult = std::move(targets[0].result);
    if (fxtResult) *fxtResult = std::move(targets[1].result);
    return {Gc3Outcome::Applied, {}};
}

std::vector<std::string> gc3HeaderLines(const Gc3Header& h) {
    return {"File Type:" + h.fileType,
            "ver:" + std::to_string(h.ver),
            "encrypt:" + std::to_string(h.encrypt),
            "stylenum:" + std::to_string(h.stylenum),
            "StyleDataPosition:" + std::to_string(h.StyleDataPosition),
            "StyleDataPositionEnd:" + std::to_string(h.StyleDataPositionEnd),
            "StyleDataLOF:" + std::to_string(h.StyleDataLOF),
            "FXTDataPosition:" + std::to_string(h.FXTDataPosition),
            "FXTDataPositionEnd:" + std::to_string(h.FXTDataPositionEnd),
            "FXTDataLOF:" + std::to_string(h.FXTDataLOF)};
}

} // namespace torquil
