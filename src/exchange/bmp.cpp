#include "exchange/bmp.h"

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "cars/car_info.h"
#include "platform/format_context.h"
#include "platform/platform.h"
#include "sprites/sprite_tables.h"
#include "style/style_file.h"

#include <algorithm>

namespace torquil {

namespace fs = std::filesystem;

namespace {

constexpr std::uint16_t kBmpType = 0x4D42; // "BM"

std::uint32_t getU32(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(getI32(p));
}

bool isLoadedCar(const CarTable& cars, const SpriteTables& sprites, int asn) {
    const auto& slots = cars.slots;
    return asn >= sprites.firstCarSprite() && asn <= sprites.lastCarSprite() && asn > 0 &&
           asn < static_cast<int>(slots.size()) && slots[asn].inUse;
}

// The 40-byte information header as written: the image size is the unpadded pixel count.
void putInfoHeader(std::uint8_t* p, int width, int height) {
    std::fill(p, p + kBmpInfoHeaderSize, std::uint8_t{0});
    putI32(p + 0, kBmpInfoHeaderSize);
    putI32(p + 4, width);
    putI32(p + 8, height);
    putI16(p + 12, 1);
    putI16(p + 14, 8);
    putI32(p + 20, width * height);
}

struct BmpHeaders {
    std::uint16_t type = 0;
    std::uint32_t dataOffset = 0;
    std::int32_t width = 0, height = 0;
    std::uint16_t bitsPerPixel = 0;
    std::int32_t compression = 0;
    BmpColourTable colours{};
};

BmpHeaders readHeaders(BinaryFile& in) {
    std::uint8_t head[kBmpFileHeaderSize + kBmpInfoHeaderSize];
    in.read(head);
    BmpHeaders h;
    h.type = getU16(head);
    h.dataOffset = getU32(head + 10);
    const std::uint8_t* info = head + kBmpFileHeaderSize;
    h.width = getI32(info + 4);
    h.height = getI32(info + 8);
    h.bitsPerPixel = getU16(info + 14);
    h.compression = getI32(info + 16);
    std::uint8_t table[256 * 4];
    in.read(table);
    for (std::size_t i = 0; i < 256; ++i)
        h.colours[i] = {table[4 * i], table[4 * i + 1], table[4 * i + 2], table[4 * i + 3]};
    return h;
}

// Why the file cannot be the sprite; each later test overrides the earlier one, so the last
// failing test names the reason.
std::string refusalReason(const BmpHeaders& h, int width, int height) {
    std::string reason;
    if (width != 0 && (h.width != width || h.height != height))
        reason = "of the exact same size as sprite.\rBMP image should be (" +
                 std::to_string(width) + "," + std::to_string(height) + ")" + " but is (" +
                 std::to_string(h.width) + "," + std::to_string(h.height) + ")";
    if (h.compression != 0) reason = "uncompressed BMP type.";
    if (h.type != kBmpType || h.bitsPerPixel != 8) reason = "8 bit BMP file.";
    return reason;
}

} // namespace

std::string bmpFileName(const StyleFileState& style, const CarTable& cars,
                        const SpriteTables& sprites, const SpriteRec& sprite) {
    const std::string level = std::to_string(style.gMapNumber);
    if (style.loadOption == kLoadTiles)
        return "KRBTIL" + level + "_" + std::to_string(sprite.ASN) + ".bmp";
    if (isLoadedCar(cars, sprites, sprite.ASN))
        return "CAR" + level + "_" +
               std::to_string(cars.slots[static_cast<std::size_t>(sprite.ASN)].info.model) + ".bmp";
    return "KRBSPR" + level + "_" + std::to_string(sprite.ASN) + ".bmp";
}

bool writeBmp(const ColourTables& styleColours, const StyleFileState& style, const fs::path& file,
              std::span<const std::uint8_t> pixels, int clut, int width, int height,
              FormatContext& ctx) {
    ErrorState& errors = ctx.errors;
    Platform& platform = ctx.platform;
    const PendingErrorScope fresh(errors);
    if (width < 0 || height < 0 ||
        pixels.size() < static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {
        errors.raise(err::SubscriptOutOfRange, "writeBmp pixels");
        return false;
    }
    const BmpColourTable colours = style.gIs24Bit ? clutColourTable(styleColours, errors, clut)
                                                  : palette8ColourTable(styleColours);

    // Built in memory and written whole in one replace: the old picture or the new one.
    BinaryFile out(errors);
    out.openInMemory(file, {});
    // Place holder; the real file header is written once the size is known.
    const std::uint8_t zeros[kBmpFileHeaderSize] = {};
    out.write(zeros);
    std::uint8_t info[kBmpInfoHeaderSize];
    putInfoHeader(info, width, height);
    out.write(info);
    std::uint8_t table[256 * 4];
    for (std::size_t i = 0; i < 256; ++i) {
        table[4 * i] = colours[i].b;
        table[4 * i + 1] = colours[i].g;
        table[4 * i + 2] = colours[i].r;
        table[4 * i + 3] = 0;
    }
    out.write(table);
    const std::int64_t dataOffset = out.position() - 1;

    std::vector<std::uint8_t> row(static_cast<std::size_t>(bmpRowLength(width)), 0);
    ProgressSink& progress = platform.progress();
    for (int y = height - 1; y >= 0; --y) {
        const auto* src = pixels.data() + static_cast<std::size_t>(y) * width;
        std::copy(src, src + width, row.begin());
        out.write(row);
        progress.setValue(height - 1 - y);
    }

    // The size field is the next 1-based write position: one more than the file's length. The
    // BMP files this editor writes have always carried that value.
    std::uint8_t header[kBmpFileHeaderSize] = {};
    putI16(header, static_cast<std::int16_t>(kBmpType));
    putI32(header + 2, static_cast<std::int32_t>(out.position()));
    putI32(header + 10, static_cast<std::int32_t>(dataOffset));
    out.seek(1);
    out.write(header);
    out.close();
    if (errors.hasPending()) return false;
    const std::vector<std::uint8_t> bytes = out.takeBytes();
    if (const ReplaceResult written = replaceFileAtomically(file, bytes); !written) {
        errors.raise(err::PathFileAccess, file.string() + ": " + written.error().cause);
        return false;
    }
    return true;
}

bool readBmp(const fs::path& file, int width, int height, std::vector<std::uint8_t>& pixels,
             FormatContext& ctx, const AcceptPalette& acceptPalette) {
    ErrorState& errors = ctx.errors;
    Platform& platform = ctx.platform;
    const PendingErrorScope fresh(errors);
    std::error_code ec;
    if (!fs::is_regular_file(file, ec)) {
        platform.message("Sprite to be imported named " + file.string() + " was not found.");
        return false;
    }
    BinaryFile in(errors);
    if (!in.open(file, BinaryFile::Mode::Read)) return false;
    const BmpHeaders h = readHeaders(in);
    const std::string reason = refusalReason(h, width, height);

    const std::int64_t length = in.length();
    const std::int64_t w = width != 0 ? width : h.width;
    const std::int64_t rows = width != 0 ? height : h.height;
    const std::int64_t rowLength = bmpRowLength(w);
    // Where the last row's pixels end; the file must hold them (its padding may be missing).
    const std::int64_t dataEnd =
        rows > 0 ? std::int64_t{h.dataOffset} + rowLength * (rows - 1) + w : h.dataOffset;
    const bool pixelsMissing =
        w < 0 || rows < 0 || (width == 0 && (w == 0 || rows == 0)) || dataEnd > length;
    if (length < kBmpMinimumFileSize || (reason.empty() && pixelsMissing)) {
        platform.message("Imported sprite file size is too small." +
                         (reason.empty() ? std::string{} : "\r" + reason));
        return false;
    }
    if (!reason.empty()) {
        platform.message("Imported sprite must be " + reason);
        return false;
    }

    if (!acceptPalette(h.colours)) return false;

    std::vector<std::uint8_t> result(static_cast<std::size_t>(w * rows));
    std::vector<std::uint8_t> row(static_cast<std::size_t>(rowLength));
    ProgressSink& progress = platform.progress();
    in.seek(std::int64_t{h.dataOffset} + 1);
    for (std::int64_t y = rows - 1; y >= 0; --y) {
        in.read(row);
        std::copy(row.begin(), row.begin() + w, result.begin() + y * w);
        progress.setValue(static_cast<int>(rows - 1 - y));
    }
    if (errors.hasPending()) return false;
    pixels = std::move(result);
    return true;
}

} // namespace torquil
