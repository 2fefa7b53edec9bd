// The 8-bit palette PNG codec: what it writes opens as such, what paint programs write for an
// 8-bit palette picture reads back, and everything else is refused with its reason.

#include "exchange/png_codec.h"

#include <gtest/gtest.h>
#if TORQUIL_PNG
#include <png.h>
#endif

#include <numeric>

using namespace torquil;

namespace {

BmpColourTable rampColours() {
    BmpColourTable c{};
    for (std::size_t i = 0; i < 256; ++i)
        c[i] = {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(255 - i),
                static_cast<std::uint8_t>(i * 7), 0};
    return c;
}

std::vector<std::uint8_t> rampPixels(int w, int h) {
    std::vector<std::uint8_t> p(static_cast<std::size_t>(w) * h);
    for (std::size_t i = 0; i < p.size(); ++i) p[i] = static_cast<std::uint8_t>(i * 31 + 5);
    return p;
}

// Every codec test skips in a build without libpng; PngCodecWithoutLibpng covers that build.
class PngCodec : public ::testing::Test {
protected:
    void SetUp() override {
        if (!pngSupported()) GTEST_SKIP() << kPngUnsupported << " (TORQUIL_PNG=OFF)";
    }
};

std::vector<std::uint8_t> encoded(int w, int h) {
    auto bytes = encodeIndexedPng(rampPixels(w, h), w, h, rampColours());
    EXPECT_TRUE(bytes) << bytes.error().text();
    return bytes.valueOr({});
}

#if TORQUIL_PNG
// A PNG written through libpng's simplified API, the way other programs write them.
std::vector<std::uint8_t> simplePng(std::uint32_t format, int w, int h,
                                    const std::vector<std::uint8_t>& pixels,
                                    const std::vector<std::uint8_t>& colormap = {},
                                    int entries = 0) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(w);
    image.height = static_cast<png_uint_32>(h);
    image.format = format;
    image.colormap_entries = static_cast<png_uint_32>(entries);
    png_alloc_size_t size = 0;
    EXPECT_TRUE(png_image_write_to_memory(&image, nullptr, &size, 0, pixels.data(), 0,
                                          colormap.empty() ? nullptr : colormap.data()));
    std::vector<std::uint8_t> out(size);
    EXPECT_TRUE(png_image_write_to_memory(&image, out.data(), &size, 0, pixels.data(), 0,
                                          colormap.empty() ? nullptr : colormap.data()));
    out.resize(size);
    return out;
}
#endif

} // namespace

TEST_F(PngCodec, WritesAnEightBitPaletteImageThatReadsBackExactly) {
    for (const auto& [w, h] : {std::pair{1, 1}, std::pair{30, 7}, std::pair{255, 3}}) {
        const auto bytes = encoded(w, h);
        // IHDR: bit depth 8, colour type 3 (palette); PLTE with all 256 colours follows.
        ASSERT_GT(bytes.size(), 41u);
        EXPECT_EQ(bytes[24], 8);
        EXPECT_EQ(bytes[25], 3); // colour type 3: palette
        EXPECT_EQ(std::string(bytes.begin() + 37, bytes.begin() + 41), "PLTE");
        const PngDecoded d = decodeIndexedPng(bytes, w, h);
        ASSERT_EQ(d.status, PngStatus::Ok) << d.detail;
        EXPECT_EQ(d.picture.pixels, rampPixels(w, h));
        EXPECT_EQ(d.picture.colourCount, 256);
        for (std::size_t i = 0; i < 256; ++i) {
            EXPECT_EQ(d.picture.colours[i].r, rampColours()[i].r);
            EXPECT_EQ(d.picture.colours[i].g, rampColours()[i].g);
            EXPECT_EQ(d.picture.colours[i].b, rampColours()[i].b);
        }
    }
}

#if TORQUIL_PNG
TEST_F(PngCodec, ReadsAPaletteImageWithTransparencyAndAShortPaletteAsItsIndexes) {
    // 17 colours with alpha (a tRNS chunk) and indexes 0..15, as a paint program saves them (with
    // 16 colours or fewer libpng would pack the pixels below 8 bits).
    std::vector<std::uint8_t> colormap;
    for (int i = 0; i < 17; ++i)
        colormap.insert(colormap.end(), {static_cast<std::uint8_t>(i * 16), 0, 0,
                                         static_cast<std::uint8_t>(i == 0 ? 0 : 255)});
    std::vector<std::uint8_t> pixels(8 * 4);
    std::iota(pixels.begin(), pixels.end(), 0);
    for (auto& p : pixels) p %= 16;
    const auto bytes = simplePng(PNG_FORMAT_RGBA_COLORMAP, 8, 4, pixels, colormap, 17);
    const PngDecoded d = decodeIndexedPng(bytes, 8, 4);
    ASSERT_EQ(d.status, PngStatus::Ok) << d.detail;
    EXPECT_EQ(d.picture.pixels, pixels);
    EXPECT_EQ(d.picture.colourCount, 17);
    EXPECT_EQ(d.picture.colours[5].r, 80);
}

TEST_F(PngCodec, RefusesWhatIsNotAnEightBitPaletteImageOfTheExpectedSize) {
    // Not a PNG at all, or too short to hold the header.
    const std::vector<std::uint8_t> text(100, 'x');
    EXPECT_EQ(decodeIndexedPng(text).status, PngStatus::NotPng);
    EXPECT_EQ(decodeIndexedPng({}).status, PngStatus::NotPng);
    // A true-colour and a grey image.
    const std::vector<std::uint8_t> rgb(4 * 4 * 3, 9);
    EXPECT_EQ(decodeIndexedPng(simplePng(PNG_FORMAT_RGB, 4, 4, rgb)).status,
              PngStatus::NotIndexed8);
    EXPECT_EQ(decodeIndexedPng(simplePng(PNG_FORMAT_GRAY, 4, 4, rgb)).status,
              PngStatus::NotIndexed8);
    // A palette image of 4 bits per pixel.
    auto four = encoded(4, 4);
    four[24] = 4;
    EXPECT_EQ(decodeIndexedPng(four).status, PngStatus::NotIndexed8);
    // The size is checked against the sprite's before any pixel is decoded.
    const PngDecoded wrong = decodeIndexedPng(encoded(30, 7), 31, 7);
    EXPECT_EQ(wrong.status, PngStatus::WrongSize);
    EXPECT_EQ(wrong.fileWidth, 30);
    EXPECT_EQ(wrong.fileHeight, 7);
}
#endif

TEST_F(PngCodec, EveryTruncationAndADamagedChecksumAreRefusedNotCrashed) {
    const auto bytes = encoded(40, 20);
    for (std::size_t n = 0; n < bytes.size(); ++n) {
        const std::vector<std::uint8_t> cut(bytes.begin(), bytes.begin() + n);
        const PngDecoded d = decodeIndexedPng(cut, 40, 20);
        EXPECT_TRUE(d.status == PngStatus::NotPng || d.status == PngStatus::Damaged) << n;
        EXPECT_TRUE(d.picture.pixels.empty());
    }
    auto bad = bytes;
    bad[bad.size() - 20] ^= 0x55; // inside the image data: its checksum no longer holds
    const PngDecoded d = decodeIndexedPng(bad, 40, 20);
    EXPECT_EQ(d.status, PngStatus::Damaged);
    EXPECT_FALSE(d.detail.empty());
}

TEST(PngFileName, ExtensionDecidesTheFormat) {
    EXPECT_TRUE(hasPngExtension("CAR1_5.png"));
    EXPECT_TRUE(hasPngExtension("a.PNG"));
    EXPECT_FALSE(hasPngExtension("CAR1_5.bmp"));
    EXPECT_FALSE(hasPngExtension("png"));
}

#if !TORQUIL_PNG
TEST(PngCodecWithoutLibpng, EveryPictureIsRefusedWithTheBuildsReason) {
    const PngDecoded d = decodeIndexedPng(std::vector<std::uint8_t>(100, 'x'), 4, 4);
    EXPECT_EQ(d.status, PngStatus::Damaged);
    EXPECT_EQ(d.detail, "PNG pictures are not supported in this build");
    EXPECT_TRUE(d.picture.pixels.empty());
    const auto encoded = encodeIndexedPng(rampPixels(4, 4), 4, 4, rampColours());
    ASSERT_FALSE(encoded);
    EXPECT_EQ(encoded.error().cause, "PNG pictures are not supported in this build");
}
#endif

TEST(PngCodecEncode, NothingToEncodeIsRefusedWithItsReason) {
    const auto encoded = encodeIndexedPng({}, 0, 0, rampColours());
    ASSERT_FALSE(encoded);
    EXPECT_EQ(encoded.message(), kPngEncodeFailed);
    EXPECT_EQ(encoded.error().cause,
              pngSupported() ? std::string("no picture to write") : std::string(kPngUnsupported));
}
