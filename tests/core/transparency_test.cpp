#include "exchange/transparency.h"

#include "exchange_fixture.h"

using namespace torquil;
namespace tb = torquil::testing;

namespace {

// A 10 x 8 sprite whose border is `background` and whose inside holds 0s and other indexes.
std::vector<std::uint8_t> framedPixels(std::uint8_t background) {
    std::vector<std::uint8_t> p(80, background);
    for (int y = 3; y < 5; ++y)
        for (int x = 3; x < 7; ++x)
            p[static_cast<std::size_t>(y) * 10 + x] =
                static_cast<std::uint8_t>(x == 3 ? 0 : 40 + x);
    return p;
}

// One sprite per case, each with a CLUT of its own: ASN 1 background 7, ASN 2 background 255,
// ASN 3 background 0, ASN 4 corners 1, 2, 0, 255 (the chained test's false agreement), ASN 5
// 2 pixels wide at the page's left edge, so its right-hand samples fall outside the page.
tb::StyleSpec transparencySpec(bool is24) {
    tb::StyleSpec s;
    s.is24 = is24;
    for (int i = 0; i < 6; ++i)
        s.cluts.push_back(tb::distinctClut(static_cast<std::uint8_t>(i * 30)));
    auto sprite = [](int x, int y, int clut, std::vector<std::uint8_t> pixels) {
        tb::SpriteSpec sp;
        sp.type = tb::SPR_OBJECT;
        sp.x = x, sp.y = y, sp.w = 10, sp.h = 8, sp.clut = clut;
        sp.pixels = std::move(pixels);
        return sp;
    };
    auto corners = framedPixels(9);
    corners[2 * 10 + 2] = 1;
    corners[2 * 10 + 7] = 2;
    corners[5 * 10 + 2] = 0;
    corners[5 * 10 + 7] = 255;
    auto narrow = sprite(0, 100, 5, std::vector<std::uint8_t>(16, 255));
    narrow.w = 2;
    s.sprites = {sprite(0, 0, 1, framedPixels(7)), sprite(20, 0, 2, framedPixels(255)),
                 sprite(40, 0, 3, framedPixels(0)), sprite(60, 0, 4, corners), narrow};
    tb::sortAndCountSprites(s);
    return s;
}

struct TransparencyFixture : tb::StyleFixture {
    void SetUp() override { open(transparencySpec(true)); }
    std::vector<std::uint8_t> spriteBytes() const {
        const SpriteRec& s = selected();
        std::vector<std::uint8_t> out;
        for (int y = 0; y < s.H; ++y)
            for (int x = 0; x < s.W && s.xo + x < 256; ++x)
                out.push_back(session->pages.pixel(s.page, s.xo + x, s.yo + y));
        return out;
    }
    std::array<std::uint8_t, 3> colour(int index) {
        return session->colours.entry(selected().clut, index);
    }
};

TEST_F(TransparencyFixture, RefusalsLeavePixelsAndColoursAsTheyWere) {
    struct Case {
        int asn;
        std::string outcome;
        std::string message;
    };
    const std::vector<Case> cases = {
        {1, "undetermined",
         "Unable to determine the transparent color.\rImage is too close to edges."},
        {3, "already correct", "Image appears to already be using correct transparency."},
        {5, "undetermined",
         "Unable to determine the transparent color.\rImage is too close to edges."},
    };
    for (const Case& c : cases) {
        select(c.asn);
        const auto before = spriteBytes();
        const auto zero = colour(0);
        platform.shownMessages.clear();
        const TransparencyResult fixed = transparencyCorrect(*session, platform);
        EXPECT_EQ(std::string(transparencyOutcomeWord(fixed)), c.outcome) << c.asn;
        ASSERT_EQ(messages().size(), 1u) << c.asn;
        EXPECT_EQ(messages()[0], c.message) << c.asn;
        // A refusal carries the words it showed.
        if (!fixed) {
            EXPECT_EQ(fixed.message(), c.message) << c.asn;
        }
        EXPECT_EQ(spriteBytes(), before) << c.asn;
        EXPECT_EQ(colour(0), zero) << c.asn;
        EXPECT_FALSE(session->style.gPagesChanged) << c.asn;
    }
}

TEST_F(TransparencyFixture, Background255IsExchangedWithZeroInPixelsAndClut) {
    select(2);
    const auto before = spriteBytes();
    const auto c0 = colour(0), c255 = colour(255), c44 = colour(44);
    platform.scriptedAnswers = {Answer::Ok};

    EXPECT_EQ(std::string(transparencyOutcomeWord(transparencyCorrect(*session, platform))),
              "corrected");
    ASSERT_EQ(platform.shownMessages.size(), 1u);
    EXPECT_EQ(platform.shownMessages[0].title, "Import G24 Palette");
    const auto after = spriteBytes();
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        const std::uint8_t want = before[i] == 255 ? 0 : before[i] == 0 ? 255 : before[i];
        EXPECT_EQ(after[i], want) << i;
    }
    EXPECT_EQ(colour(0), c255);
    EXPECT_EQ(colour(255), c0);
    EXPECT_EQ(colour(44), c44);
    EXPECT_TRUE(session->style.gPagesChanged);
    EXPECT_TRUE(session->style.gClutChanged);
    // The picture looks the same: the background pixel still shows the old 255 colour.
    const SpriteRec& s = selected();
    const std::uint32_t shown = session->image.at(s.page * 256 + s.xo, s.yo);
    EXPECT_EQ(shown, (std::uint32_t{c255[0]} << 16) | (std::uint32_t{c255[1]} << 8) | c255[2]);
}

TEST_F(TransparencyFixture, CancelOfThePaletteQuestionChangesNothing) {
    select(2);
    const auto before = spriteBytes();
    const auto c0 = colour(0);
    platform.scriptedAnswers = {Answer::Cancel};
    EXPECT_EQ(std::string(transparencyOutcomeWord(transparencyCorrect(*session, platform))),
              "cancelled");
    EXPECT_EQ(spriteBytes(), before);
    EXPECT_EQ(colour(0), c0);
    EXPECT_FALSE(session->style.gPagesChanged);
}

TEST_F(TransparencyFixture, ChainedCornerTestTakesUnequalCornersThatHappenToPass) {
    // Corners 1, 2, 0, 255: (1 = 2) is 0, (0 = 0) is 255, and 255 = 255, so index 1 is taken.
    select(4);
    const auto before = spriteBytes();
    platform.scriptedAnswers = {Answer::Ok};
    EXPECT_EQ(std::string(transparencyOutcomeWord(transparencyCorrect(*session, platform))),
              "corrected");
    const auto after = spriteBytes();
    for (std::size_t i = 0; i < before.size(); ++i) {
        const std::uint8_t want = before[i] == 1 ? 0 : before[i] == 0 ? 1 : before[i];
        EXPECT_EQ(after[i], want) << i;
    }
}

TEST_F(TransparencyFixture, EightBitStylesAreRefused) {
    open(transparencySpec(false), "STYLE001.GRY");
    select(2);
    const auto before = spriteBytes();
    EXPECT_EQ(std::string(transparencyOutcomeWord(transparencyCorrect(*session, platform))),
              "refused");
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_EQ(messages()[0], "Sorry , Transparency Correction not supported on 8bit style files.");
    EXPECT_EQ(spriteBytes(), before);
}

TEST_F(TransparencyFixture, MaskShowsIndexZeroRedAndTheRestWhiteInsideARedFrame) {
    select(2);
    const TransparencyMask mask = transparencyTest(*session, selected());
    EXPECT_EQ(mask.width, 12);
    EXPECT_EQ(mask.height, 10);
    EXPECT_EQ(mask.title, "Transparency test...");
    EXPECT_EQ(mask.toolTip, "OK if you see a white shape in a red background.");
    EXPECT_EQ(kMaskBackground, 0xB42828u); // 180, 40, 40
    const auto pixels = framedPixels(255);
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 12; ++x) {
            const bool inside = x >= 1 && x <= 10 && y >= 1 && y <= 8;
            const std::uint8_t v =
                inside ? pixels[static_cast<std::size_t>(y - 1) * 10 + (x - 1)] : 0;
            EXPECT_EQ(mask.at(x, y), v != 0 ? kMaskShape : kMaskBackground) << x << "," << y;
        }
    }
    EXPECT_EQ(mask.at(4, 4), kMaskBackground); // the 0 inside the shape
}

} // namespace

namespace {

TEST_F(TransparencyFixture, CommandLineFixSavesTheExchangedColours) {
    const std::string work = dir.path().string();
    auto fixed = tb::runCli(
        {"transparency-fix", "--workdir", work, "--answer", "ok", stylePath.string(), "2"});
    ASSERT_EQ(fixed.status, 0) << fixed.err;
    EXPECT_EQ(fixed.out, "corrected\n");
    reopen();
    select(2);
    EXPECT_EQ(session->pages.pixel(0, 20, 0), 0);
    const tb::Rgb old255 = tb::distinctClut(60)[255]; // ASN 2's CLUT as the builder wrote it
    EXPECT_EQ(colour(0), (std::array<std::uint8_t, 3>{old255.r, old255.g, old255.b}));
    EXPECT_EQ(std::string(transparencyOutcomeWord(transparencyCorrect(*session, platform))),
              "already correct");

    auto refused = tb::runCli({"transparency-fix", "--workdir", work, stylePath.string(), "1"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.out, "undetermined\n");
}

} // namespace
