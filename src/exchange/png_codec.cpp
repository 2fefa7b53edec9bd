#include "exchange/png_codec.h"

#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstring>

namespace torquil {

namespace {

// libpng reports errors with longjmp. Everything between setjmp and the jump lives in the plain
// functions below: only trivially destructible locals and buffers the caller owns, so no C++
// destructor is ever skipped.

struct ReadSource {
    const std::uint8_t* data;
    std::size_t size;
    std::size_t pos;
    char message[160];
};

void readBytes(png_structp png, png_bytep out, png_size_t count) {
    auto* src = static_cast<ReadSource*>(png_get_io_ptr(png));
    if (count > src->size - src->pos) png_error(png, "the file ends early");
    std::memcpy(out, src->data + src->pos, count);
    src->pos += count;
}

void keepError(png_structp png, png_const_charp message) {
    auto* target = static_cast<char*>(png_get_error_ptr(png));
    std::snprintf(target, 160, "%s", message ? message : "libpng error");
    png_longjmp(png, 1);
}

void ignoreWarning(png_structp, png_const_charp) {}

// Decodes the rows of a non-interlaced or interlaced 8-bit palette image into `rows` (height
// pointers to width bytes each) and copies its PLTE into `palette`. False with src->message set
// when libpng fails or the data does not match the header the caller checked.
bool decodeRows(ReadSource* src, png_bytep* rows, png_uint_32 width, png_uint_32 height,
                png_color* palette, int* paletteCount) {
    png_structp png =
        png_create_read_struct(PNG_LIBPNG_VER_STRING, src->message, keepError, ignoreWarning);
    if (!png) return false;
    png_infop info = png_create_info_struct(png);
    if (!info) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        return false;
    }
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_read_struct(&png, &info, nullptr);
        return false;
    }
    png_set_read_fn(png, src, readBytes);
    png_set_user_limits(png, width, height);
    png_read_info(png, info);
    if (png_get_image_width(png, info) != width || png_get_image_height(png, info) != height ||
        png_get_bit_depth(png, info) != 8 ||
        png_get_color_type(png, info) != PNG_COLOR_TYPE_PALETTE)
        png_error(png, "the header does not match");
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    if (png_get_rowbytes(png, info) != width) png_error(png, "unexpected row length");
    png_colorp plte = nullptr;
    int count = 0;
    if (png_get_PLTE(png, info, &plte, &count) == 0 || !plte) count = 0;
    count = std::clamp(count, 0, 256);
    for (int i = 0; i < count; ++i) palette[i] = plte[i];
    *paletteCount = count;
    png_read_image(png, rows);
    png_read_end(png, nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
    return true;
}

struct WriteTarget {
    std::vector<std::uint8_t>* out;
    char message[160];
};

void writeBytes(png_structp png, png_bytep data, png_size_t count) {
    auto* target = static_cast<WriteTarget*>(png_get_io_ptr(png));
    bool failed = false;
    try {
        target->out->insert(target->out->end(), data, data + count);
    } catch (...) {
        failed = true; // no exception may cross libpng's C frames
    }
    if (failed) png_error(png, "out of memory");
}

void flushNothing(png_structp) {}

bool encodeRows(WriteTarget* target, png_bytep* rows, png_uint_32 width, png_uint_32 height,
                const png_color* palette) {
    png_structp png =
        png_create_write_struct(PNG_LIBPNG_VER_STRING, target->message, keepError, ignoreWarning);
    if (!png) return false;
    png_infop info = png_create_info_struct(png);
    if (!info) {
        png_destroy_write_struct(&png, nullptr);
        return false;
    }
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_set_write_fn(png, target, writeBytes, flushNothing);
    png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_PLTE(png, info, palette, 256);
    png_write_info(png, info);
    png_write_image(png, rows);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return true;
}

std::uint32_t bigEndian32(const std::uint8_t* p) {
    return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) | (std::uint32_t{p[2]} << 8) |
           p[3];
}

constexpr std::size_t kSignatureBytes = 8;
constexpr std::size_t kHeaderEnd = 33; // signature + IHDR chunk (length, type, 13 bytes, CRC)

} // namespace

PngDecoded decodeIndexedPng(std::span<const std::uint8_t> bytes, int expectedWidth,
                            int expectedHeight) {
    PngDecoded result;
    if (bytes.size() < kHeaderEnd ||
        png_sig_cmp(const_cast<png_bytep>(bytes.data()), 0, kSignatureBytes) != 0 ||
        std::memcmp(bytes.data() + 12, "IHDR", 4) != 0)
        return result; // NotPng
    const std::uint8_t* ihdr = bytes.data() + 16;
    const std::uint32_t width = bigEndian32(ihdr);
    const std::uint32_t height = bigEndian32(ihdr + 4);
    result.fileWidth = static_cast<int>(std::min<std::uint32_t>(width, 0x7FFFFFFF));
    result.fileHeight = static_cast<int>(std::min<std::uint32_t>(height, 0x7FFFFFFF));
    const int bitDepth = ihdr[8];
    const int colourType = ihdr[9];
    if (bitDepth != 8 || colourType != PNG_COLOR_TYPE_PALETTE) {
        result.status = PngStatus::NotIndexed8;
        return result;
    }
    if (expectedWidth != 0 &&
        (std::int64_t{width} != expectedWidth || std::int64_t{height} != expectedHeight)) {
        result.status = PngStatus::WrongSize;
        return result;
    }
    // Both are below 2^32, so their product fits 64 unsigned bits.
    if (width == 0 || height == 0 ||
        std::uint64_t{width} * height > static_cast<std::uint64_t>(kPngMaxPixels)) {
        result.status = PngStatus::Damaged;
        result.detail = "the picture is empty or too large";
        return result;
    }

    IndexedPicture& picture = result.picture;
    picture.width = static_cast<int>(width);
    picture.height = static_cast<int>(height);
    picture.pixels.assign(static_cast<std::size_t>(width) * height, 0);
    std::vector<png_bytep> rows(height);
    for (std::uint32_t y = 0; y < height; ++y)
        rows[y] = picture.pixels.data() + static_cast<std::size_t>(y) * width;
    png_color palette[256] = {};
    int count = 0;
    ReadSource src{bytes.data(), bytes.size(), 0, {}};
    if (!decodeRows(&src, rows.data(), width, height, palette, &count)) {
        result.status = PngStatus::Damaged;
        result.detail = src.message[0] ? src.message : "libpng could not start";
        result.picture = {};
        return result;
    }
    for (int i = 0; i < count; ++i)
        picture.colours[static_cast<std::size_t>(i)] = {palette[i].blue, palette[i].green,
                                                        palette[i].red, 0};
    picture.colourCount = count;
    result.status = PngStatus::Ok;
    return result;
}

Result<std::vector<std::uint8_t>> encodeIndexedPng(std::span<const std::uint8_t> pixels, int width,
                                                   int height, const BmpColourTable& colours) {
    std::vector<std::uint8_t> out;
    if (width <= 0 || height <= 0 ||
        pixels.size() < static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
        return fail(kPngEncodeFailed, "no picture to write");
    // libpng takes non-const row pointers even for writing; it does not change the rows.
    std::vector<png_bytep> rows(static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y)
        rows[static_cast<std::size_t>(y)] =
            const_cast<png_bytep>(pixels.data() + static_cast<std::size_t>(y) * width);
    png_color palette[256];
    for (std::size_t i = 0; i < 256; ++i) palette[i] = {colours[i].r, colours[i].g, colours[i].b};
    WriteTarget target{&out, {}};
    if (!encodeRows(&target, rows.data(), static_cast<png_uint_32>(width),
                    static_cast<png_uint_32>(height), palette)) {
        return fail(kPngEncodeFailed,
                    target.message[0] ? target.message : "libpng could not start");
    }
    return out;
}

bool pngSupported() {
    return true;
}

} // namespace torquil
