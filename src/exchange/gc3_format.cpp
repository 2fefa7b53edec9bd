// GC3 packs on disk: the header, the records, the trailer and the unmodified bytes kept by packs
// written here, and the header reader.

#include "exchange/gc3.h"

#include "base/binary_file.h"
#include "platform/platform.h"
#include "style/section_map.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <optional>

namespace torquil {

namespace fs = std::filesystem;

namespace {

constexpr const char* kGc3ReadError = "Error reading GC3 file.";

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

std::vector<std::uint8_t> encodeGc3Trailer(const Gc3Trailer& t) {
    std::vector<std::uint8_t> b(kGc3TrailerSize, 0);
    std::copy(kGc3TrailerMagic.begin(), kGc3TrailerMagic.end(), b.begin());
    const std::uint32_t crcs[] = {t.originalStyle, t.originalFxt, t.resultStyle, t.resultFxt};
    for (std::size_t i = 0; i < 4; ++i) putI32(&b[4 + 4 * i], static_cast<std::int32_t>(crcs[i]));
    return b;
}

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
    // The unmodified style file's layout, in packs that keep it.
    if (fits && next + 12 <= end &&
        std::equal(kGc3LayoutMagic.begin(), kGc3LayoutMagic.end(), bytes.data() + next)) {
        next += 4;
        for (std::vector<std::uint8_t>* part : {&o.styleHead, &o.styleSpriteInfo}) {
            const std::int32_t count = next + 4 <= end ? getI32(bytes.data() + next) : -1;
            next += 4;
            if (count < 0)
                fits = false;
            else
                take(static_cast<std::size_t>(count), *part);
        }
    }
    if (!fits || next != end) return std::nullopt;
    return o;
}

std::vector<std::uint8_t> encodeGc3StyleLayout(const std::vector<std::uint8_t>& style, bool is24) {
    std::vector<std::uint8_t> out(kGc3LayoutMagic.begin(), kGc3LayoutMagic.end());
    std::span<const std::uint8_t> head, spriteInfo;
    const auto length = static_cast<std::int64_t>(style.size());
    const int headSize = is24 ? G24Header::kSize : GRYHeader::kSize;
    if (length >= headSize) {
        const StyleHeader header = parseStyleHeader(style.data(), is24);
        if (headerFitsFile(header, length)) {
            head = std::span(style).first(static_cast<std::size_t>(headSize));
            for (const StyleSection& s : styleSectionMap(header, length))
                if (std::string_view(s.name) == "sprite info")
                    spriteInfo = std::span(style).subspan(static_cast<std::size_t>(s.first - 1),
                                                          static_cast<std::size_t>(s.length));
        }
    }
    for (std::span<const std::uint8_t> part : {head, spriteInfo}) {
        const std::size_t at = out.size();
        out.resize(at + 4);
        putI32(&out[at], static_cast<std::int32_t>(part.size()));
        out.insert(out.end(), part.begin(), part.end());
    }
    return out;
}

bool readGC3(const fs::path& pack, Gc3Header& header, Platform& platform) {
    ErrorState errors;
    BinaryFile in(errors);
    std::error_code ec;
    if (!fs::is_regular_file(pack, ec) || !in.open(pack, BinaryFile::Mode::Read) ||
        in.length() < kGc3HeaderSize) {
        platform.message(kGc3ReadError);
        return false;
    }
    std::uint8_t bytes[kGc3HeaderSize];
    in.read(bytes);
    header = decodeGc3Header(bytes);
    return !errors.hasPending();
}

Result<Gc3Pack> parseGc3(const std::vector<std::uint8_t>& bytes) {
    Gc3Pack pack;
    if (bytes.size() < static_cast<std::size_t>(kGc3HeaderSize))
        return fail("the pack is shorter than its header");
    pack.header = decodeGc3Header(bytes.data());
    if (pack.header.fileType != "GC3") return fail("the pack does not begin with GC3");
    const Gc3Header& h = pack.header;
    std::string error;
    if (!parseRecords(bytes, h.StyleDataPosition, h.StyleDataPositionEnd, pack.styleRecords,
                      error) ||
        !parseRecords(bytes, h.FXTDataPosition, h.FXTDataPositionEnd, pack.fxtRecords, error))
        return fail(error.empty() ? std::string("not a GC3 pack") : error);
    return pack;
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
