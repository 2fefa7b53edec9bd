#include "cars/remap_colours.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace torquil {
namespace {

int channelOf(std::uint32_t rgb, int shift) {
    return static_cast<int>((rgb >> shift) & 0xFF);
}

// Largest difference of one channel between two colours.
int channelDistance(std::uint32_t a, std::uint32_t b) {
    int worst = 0;
    for (int shift : {0, 8, 16})
        worst = std::max(worst, std::abs(channelOf(a, shift) - channelOf(b, shift)));
    return worst;
}

// A CLUT with every kind of colour: greys, saturated hues, pastels, dark shades.
ClutColours sampleClut() {
    ClutColours clut{};
    for (std::uint32_t i = 0; i < 256; ++i)
        clut[i] =
            ((i * 37u) & 0xFF) << 16 | ((i * 91u + 13u) & 0xFF) << 8 | ((i * 53u + 7u) & 0xFF);
    clut[0] = 0x123456; // colour 0 is transparent whatever it holds
    return clut;
}

TEST(RemapColours, ZeroRemapIsTheBaseClutItself) {
    const ClutColours base = sampleClut();
    EXPECT_EQ(remapClut(base, {0, 0, 0}), base);
    // A full turn of the hue is no turn at all; L is not used by the game's remaps.
    EXPECT_EQ(remapClut(base, {360, 0, 0}), base);
    EXPECT_EQ(remapClut(base, {0, 50, 0}), base);
}

TEST(RemapColours, HsvRoundTripKeepsEveryColourWithinOneStep) {
    for (std::uint32_t rgb = 0; rgb < 0x1000000; rgb += 0x010307) {
        ASSERT_LE(channelDistance(hsvToRgb(rgbToHsv(rgb)), rgb), 1) << std::hex << rgb;
    }
}

TEST(RemapColours, HueTurnsByDegreesAndWraps) {
    EXPECT_EQ(remappedColour(0xFF0000, 120, 0), 0x00FF00u);
    EXPECT_EQ(remappedColour(0xFF0000, 240, 0), 0x0000FFu);
    EXPECT_EQ(remappedColour(0xFF0000, -120, 0), 0x0000FFu);
    EXPECT_EQ(remappedColour(0xFF0000, 480, 0), 0x00FF00u);
    EXPECT_EQ(remappedColour(0x00FF00, 300, 0), 0xFFFF00u) << "green turned past red wraps";
    // Half a turn of an orange gives its complement at the same value and saturation.
    EXPECT_EQ(remappedColour(0xC86432, 180, 0), 0x3296C8u);
}

TEST(RemapColours, SaturationScalesAndClampsWhileValueStays) {
    EXPECT_EQ(remappedColour(0xC86464, 100, 0), 0x85C864u) << "a hue turn keeps the value";
    EXPECT_EQ(remappedColour(0xC86464, 0, 100), 0xC80000u);  // 0.5 * 2 = fully saturated
    EXPECT_EQ(remappedColour(0xC86464, 0, 300), 0xC80000u);  // clamped at 1
    EXPECT_EQ(remappedColour(0xC86464, 0, -100), 0xC8C8C8u); // no saturation: grey of that value
    EXPECT_EQ(remappedColour(0xC86464, 0, -250), 0xC8C8C8u); // clamped at 0
    EXPECT_EQ(remappedColour(0xC86464, 0, -50), 0xC89696u);
    EXPECT_EQ(remappedColour(0x808080, 90, 100), 0x808080u) << "a grey has nothing to turn";
}

TEST(RemapColours, WholeClutKeepsColourZeroAndEachValue) {
    const ClutColours base = sampleClut();
    const ClutColours out = remapClut(base, {137, 0, 40});
    EXPECT_EQ(out[0], base[0]);
    int changed = 0;
    for (std::size_t c = 1; c < 256; ++c) {
        const int hiBase =
            std::max({channelOf(base[c], 0), channelOf(base[c], 8), channelOf(base[c], 16)});
        const int hiOut =
            std::max({channelOf(out[c], 0), channelOf(out[c], 8), channelOf(out[c], 16)});
        EXPECT_LE(std::abs(hiBase - hiOut), 1) << "colour " << c;
        EXPECT_EQ(out[c], remappedColour(base[c], 137, 40));
        changed += out[c] != base[c];
    }
    EXPECT_GT(changed, 200);
}

TEST(RemapColours, InUseAndDistinctCountsCompareTheRightTable) {
    CarInfo info;
    for (int i = 0; i < kRemapCount; ++i) {
        info.remap24[static_cast<std::size_t>(i)] = {static_cast<std::int16_t>(i * 30), 0, 0};
        info.remap8[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(i + 100);
    }
    info.remap24[7] = info.remap24[3];
    info.remap8[0] = info.remap8[11];

    EXPECT_TRUE(remapInUse(info, 3, true));
    EXPECT_TRUE(remapInUse(info, 7, true));
    EXPECT_FALSE(remapInUse(info, 0, true));
    EXPECT_TRUE(remapInUse(info, 0, false));
    EXPECT_TRUE(remapInUse(info, 11, false));
    EXPECT_FALSE(remapInUse(info, 3, false));
    EXPECT_FALSE(remapInUse(info, -1, true));
    EXPECT_FALSE(remapInUse(info, 12, true));
    // Lightness counts: remaps that differ only in L are different remaps.
    info.remap24[7][1] = 5;
    EXPECT_FALSE(remapInUse(info, 3, true));

    EXPECT_EQ(distinctRemaps(info, 0, 11, false), 11);
    EXPECT_EQ(distinctRemaps(info, 1, 11, false), 11);
    info.remap24 = {};
    EXPECT_EQ(distinctRemaps(info, 0, 11, true), 1);
    EXPECT_EQ(distinctRemaps(info, -5, 40, true), 1) << "the range is cut to the 12 remaps";
}

TEST(RemapColours, ColorationLinesNameTheirRemaps) {
    CarInfo info;
    info.remap24[1] = {40, 0, 0};
    info.remap24[2] = {80, 0, 10};
    ASSERT_EQ(std::string(kColorationLines[0].caption), "Random Car Coloration:");
    ASSERT_EQ(std::string(kColorationLines[1].caption), "Resprayed Car Coloration:");
    ASSERT_EQ(std::string(kColorationLines[2].caption), "Unparked Random Car Coloration:");
    EXPECT_EQ(describeColoration(info, kColorationLines[0], true), "remaps 0 to 11 (3 different)");
    EXPECT_EQ(describeColoration(info, kColorationLines[1], true), "remaps 1 to 11 (3 different)");
    EXPECT_EQ(describeColoration(info, kColorationLines[2], true), "remap 0");
    EXPECT_EQ(describeColoration(info, kColorationLines[0], false), "remaps 0 to 11 (1 different)");
}

} // namespace
} // namespace torquil
