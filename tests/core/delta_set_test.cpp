// Delta sets: the frames a delta draws, the run lines a changed frame becomes, and the whole
// export, import and save on the sample level and the full-size level.

#include "delta_runs.h"
#include "exchange/bmp.h"
#include "exchange/delta_frames.h"
#include "exchange/delta_io.h"
#include "exchange/png_codec.h"
#include "exchange/sprite_exchange.h"
#include "sample_level.h"
#include "session/delta_sets.h"
#include "session/edits.h"
#include "session/picture_file.h"
#include "session/save_sequence.h"

#include "exchange_fixture.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <functional>

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

using torquil::testing::deltaOf;
using torquil::testing::run;

using RunAt = std::tuple<int, int, std::vector<std::uint8_t>>;
std::vector<RunAt> runsOf(const std::vector<RunLine>& runs) {
    std::vector<RunAt> out;
    for (const RunLine& r : runs) out.emplace_back(r.offset, r.length, r.data);
    return out;
}

// Every sprite of the open style that has deltas, as (page, SIB).
std::vector<std::pair<int, int>> spritesWithDeltas(const StyleSession& s) {
    std::vector<std::pair<int, int>> out;
    for (int page = 0; page < kMaxPages; ++page)
        for (int sib = 1; sib <= s.sprites.pageCount(page); ++sib)
            if (s.sprites.pageSprites[page][sib].delta_count > 0) out.emplace_back(page, sib);
    return out;
}

struct DeltaSetFixture : tb::StyleFixture {
    void openSample(const std::string& name = "STYLE001.G24") {
        tb::writeSampleLevel(dir.path());
        stylePath = dir / name;
        reopen();
    }
    void selectAt(std::pair<int, int> at) {
        session->selection.page = at.first;
        session->selection.sib = at.second;
    }
    std::vector<std::vector<RunAt>> allRuns() const {
        std::vector<std::vector<RunAt>> out;
        for (const DeltaRec& d : session->deltas.myDeltas) out.push_back(runsOf(d.runLine));
        return out;
    }
    // Exports and re-imports every delta set of the style unchanged, then saves. A build without
    // libpng takes BMP where PNG is asked for.
    void roundTripEverySet(std::vector<std::string> extensions) {
        if (!pngSupported())
            std::ranges::replace(extensions, std::string(".png"), std::string(".bmp"));
        const auto sprites = spritesWithDeltas(*session);
        ASSERT_FALSE(sprites.empty());
        int n = 0;
        for (const auto& at : sprites) {
            selectAt(at);
            for (const bool clean : {false, true}) {
                const std::string ext =
                    extensions[static_cast<std::size_t>(n++) % extensions.size()];
                const fs::path file = dir / ("set" + ext);
                ASSERT_TRUE(exportDeltaSet(*session, platform, file, clean));
                const DeltaSetImport result = importDeltaSet(*session, platform, file, clean);
                ASSERT_TRUE(result) << at.first << "/" << at.second << " " << ext;
                EXPECT_EQ(*result, 0) << at.first << "/" << at.second << " " << ext;
            }
        }
        EXPECT_TRUE(messages().empty()) << messages().front();
        EXPECT_TRUE(session->style.gDeltasChanged && session->style.gPagesChanged);
        EXPECT_EQ(saveChanges(*session, platform).result, SaveResult::Saved);
    }
};

} // namespace

// ---------------------------------------------------------------- frames and runs

TEST(DeltaFrames, RunsChainFromWhereThePreviousRunEndedInRowsOf256) {
    // Row 2 column 5, then 250 on from its end (row 3 column 2), on a 16 x 16 sprite.
    const DeltaRec d = deltaOf({run(517, {1, 2, 3}), run(250, {4}), RunLine{}, run(3, {9})});
    std::vector<std::uint8_t> frame(256, 0);
    EXPECT_EQ(drawDelta(d, 16, 16, frame), 0);
    std::vector<std::uint8_t> expected(256, 0);
    expected[2 * 16 + 5] = 1, expected[2 * 16 + 6] = 2, expected[2 * 16 + 7] = 3;
    expected[3 * 16 + 2] = 4;
    EXPECT_EQ(frame, expected); // the run after the offset-0 one is not part of the delta
    const DeltaExtent e = deltaExtent(d, 16, 16);
    EXPECT_EQ(e.runs, 2);
    EXPECT_EQ(e.pixels, 4);
    EXPECT_EQ(std::tuple(e.left, e.top, e.right, e.bottom), std::tuple(2, 2, 7, 3));
    // Pixels past the sprite's right edge or bottom are counted, not drawn.
    std::vector<std::uint8_t> small(4 * 4, 0);
    EXPECT_EQ(drawDelta(deltaOf({run(2, {1, 1, 1}), run(1024, {5})}), 4, 4, small), 2);
}

TEST(DeltaFrames, ChangedFrameBecomesMergedRunsWithinRowsAndDrawsBackTheSame) {
    constexpr int w = 20, h = 6;
    std::vector<std::uint8_t> base(w * h, 3);
    std::vector<std::uint8_t> frame = base;
    for (int x = 4; x < 9; ++x) frame[1 * w + x] = 7; // one run of 5
    frame[1 * w + 19] = 8, frame[2 * w + 0] = 8;      // touching across rows: 2 runs
    for (int x = 0; x < w; ++x) frame[5 * w + x] = 9; // a whole row
    const FrameRuns r = runsFromFrame(base, frame, w, h);
    ASSERT_TRUE(r.ok) << r.reason;
    ASSERT_EQ(r.runs.size(), 4u);
    EXPECT_EQ(r.runs[0].offset, 256 + 4);
    EXPECT_EQ(r.runs[0].length, 5);
    EXPECT_EQ(r.runs[1].offset, 19 - 9);
    EXPECT_EQ(r.runs[2].offset, 256 - 20); // from row 1 column 20 to row 2 column 0
    EXPECT_EQ(r.runs[3].offset, 3 * 256 - 1);
    EXPECT_EQ(r.runs[3].length, 20);
    EXPECT_EQ(r.bytes, 5 + 1 + 1 + 20 + 4 * 3);
    std::vector<std::uint8_t> drawn = base;
    drawDelta(deltaOf(r.runs), w, h, drawn);
    EXPECT_EQ(drawn, frame);
    // A frame like its base is an empty delta: the single empty run line of a size-0 delta.
    const FrameRuns none = runsFromFrame(base, base, w, h);
    ASSERT_TRUE(none.ok);
    EXPECT_EQ(runsOf(none.runs), runsOf({RunLine{}}));
    // A row of 255 pixels is one run.
    std::vector<std::uint8_t> wide(255 * 2, 0), wideFrame = wide;
    std::fill(wideFrame.begin() + 255, wideFrame.end(), 1);
    const FrameRuns full = runsFromFrame(wide, wideFrame, 255, 2);
    ASSERT_EQ(full.runs.size(), 1u);
    EXPECT_EQ(full.runs[0].offset, 256);
    EXPECT_EQ(full.runs[0].length, 255);
}

TEST(DeltaFrames, TopLeftPixelAndOversizedDeltasAreRefused) {
    std::vector<std::uint8_t> base(10 * 10, 0), frame = base;
    frame[0] = 5;
    const FrameRuns topLeft = runsFromFrame(base, frame, 10, 10);
    EXPECT_FALSE(topLeft.ok);
    EXPECT_NE(topLeft.reason.find("top-left pixel (0,0)"), std::string::npos);
    // 255 x 255 changed pixels need 255 * 258 bytes, more than a 16-bit size holds.
    std::vector<std::uint8_t> big(255 * 255, 0), all(255 * 255, 1);
    big[0] = 1; // the top-left pixel stays as it is
    const FrameRuns tooBig = runsFromFrame(big, all, 255, 255);
    EXPECT_FALSE(tooBig.ok);
    EXPECT_NE(tooBig.reason.find("32767"), std::string::npos);
}

TEST(DeltaFrames, SetPictureHasEachFrameSideBySideDirtyOrClean) {
    const std::vector<std::uint8_t> sprite(3 * 2, 4);
    const DeltaRec a = deltaOf({run(1, {9})}), b = deltaOf({run(256, {8, 8})});
    const auto dirty = deltaSetPicture(sprite, 3, 2, {&a, &b}, false);
    EXPECT_EQ(dirty, (std::vector<std::uint8_t>{4, 9, 4, 4, 4, 4, 4, 4, 4, 8, 8, 4}));
    const auto clean = deltaSetPicture(sprite, 3, 2, {&a, &b}, true);
    EXPECT_EQ(clean, (std::vector<std::uint8_t>{0, 9, 0, 0, 0, 0, 0, 0, 0, 8, 8, 0}));
    EXPECT_EQ(deltaSetFrame(clean, 3, 2, 1), (std::vector<std::uint8_t>{0, 0, 0, 8, 8, 0}));
}

// ---------------------------------------------------------------- export, import and save

TEST_F(DeltaSetFixture, EverySetOfTheSampleLevelRoundTripsToTheSameBytes) {
    for (const std::string name : {"STYLE001.G24", "STYLE002.GRY"}) {
        SCOPED_TRACE(name);
        openSample(name);
        const auto before = tb::readFile(stylePath);
        roundTripEverySet({".bmp", ".png"});
        EXPECT_EQ(tb::readFile(stylePath), before);
    }
}

TEST_F(DeltaSetFixture, EverySetOfTheFullSizeLevelRoundTripsToTheSameBytes) {
    open(tb::fullSizeSpec24());
    const auto before = tb::readFile(stylePath);
    roundTripEverySet({".bmp", ".png", ".png", ".bmp"});
    EXPECT_EQ(tb::readFile(stylePath), before);
}

TEST_F(DeltaSetFixture, OnePixelAddedToACleanSetGrowsThatDeltaAndMovesEveryLaterOne) {
    openSample();
    // A delta followed by others, whose pixels hold no colour 0 (a clean frame would drop them),
    // and a pixel of its frame that is 0 with 0 on both sides, so the new run touches no other.
    int deltaIndex = -1, x = -1, y = -1;
    std::pair<int, int> at;
    for (const auto& where : spritesWithDeltas(*session)) {
        const SpriteRec& s = session->sprites.pageSprites[where.first][where.second];
        const int k = s.deltas.front();
        const DeltaRec& d = session->deltas.myDeltas[k];
        if (k + 1 >= session->deltas.deltaCount) continue;
        bool zero = false;
        for (const RunLine& r : usedRuns(d))
            for (auto v : r.data) zero = zero || v == 0;
        if (zero) continue;
        std::vector<std::uint8_t> frame(s.W * s.H, 0);
        drawDelta(d, s.W, s.H, frame);
        for (int yy = 1; yy < s.H && x < 0; ++yy)
            for (int xx = 1; xx + 1 < s.W && x < 0; ++xx)
                if (!frame[yy * s.W + xx - 1] && !frame[yy * s.W + xx] && !frame[yy * s.W + xx + 1])
                    x = xx, y = yy;
        if (x >= 0) {
            deltaIndex = k;
            at = where;
            break;
        }
    }
    ASSERT_GE(deltaIndex, 0);
    selectAt(at);
    const SpriteRec sprite = selected();
    const auto before = tb::readFile(stylePath);
    const std::vector<DeltaRec> old = session->deltas.myDeltas;
    const std::int64_t storeStart = deltaStoreStart(*session);

    const fs::path file = dir / "clean.bmp";
    ASSERT_TRUE(exportDeltaSet(*session, platform, file, true));
    std::vector<std::uint8_t> picture;
    const int width = sprite.W * sprite.delta_count;
    ASSERT_TRUE(readPicture(*session, platform, file, sprite.clut, width, sprite.H, picture));
    picture[static_cast<std::size_t>(y) * width + x] = 77; // in frame 0
    ASSERT_TRUE(writePicture(*session, platform, file, picture, sprite.clut, width, sprite.H));
    const DeltaSetImport result = importDeltaSet(*session, platform, file, true);
    ASSERT_TRUE(result);
    EXPECT_EQ(*result, 1);
    ASSERT_EQ(saveChanges(*session, platform).result, SaveResult::Saved);
    const auto after = tb::readFile(stylePath);
    ASSERT_EQ(after.size(), before.size() + 4); // offset, length and one pixel

    // Reopened: the changed delta has one more run and draws the new pixel; every later delta
    // starts 4 bytes on; sizes, pointers and runs of all others are as they were.
    reopen();
    const auto& now = session->deltas.myDeltas;
    ASSERT_EQ(now.size(), old.size());
    for (std::size_t i = 0; i < old.size(); ++i) {
        const int k = static_cast<int>(i);
        EXPECT_EQ(now[i].size, old[i].size + (k == deltaIndex ? 4 : 0)) << i;
        EXPECT_EQ(now[i].ptr, old[i].ptr + (k > deltaIndex ? 4 : 0)) << i;
        if (k != deltaIndex) {
            EXPECT_EQ(runsOf(now[i].runLine), runsOf(old[i].runLine)) << i;
        }
    }
    EXPECT_EQ(usedRuns(now[deltaIndex]).size(), usedRuns(old[deltaIndex]).size() + 1);
    std::vector<std::uint8_t> frame(sprite.W * sprite.H, 0), expected = frame;
    drawDelta(old[deltaIndex], sprite.W, sprite.H, expected);
    expected[static_cast<std::size_t>(y) * sprite.W + x] = 77;
    drawDelta(now[deltaIndex], sprite.W, sprite.H, frame);
    EXPECT_EQ(frame, expected);

    // Byte by byte: the old file with the size/pointer entries and sprite_graphics_size patched,
    // and the delta's data replaced by its new data; nothing else differs.
    std::vector<std::uint8_t> patched = before;
    const std::size_t dataAt = static_cast<std::size_t>(storeStart - 1 + old[deltaIndex].ptr);
    patched.erase(patched.begin() + static_cast<std::ptrdiff_t>(dataAt),
                  patched.begin() + static_cast<std::ptrdiff_t>(dataAt + old[deltaIndex].size));
    patched.insert(patched.begin() + static_cast<std::ptrdiff_t>(dataAt),
                   after.begin() + static_cast<std::ptrdiff_t>(dataAt),
                   after.begin() + static_cast<std::ptrdiff_t>(dataAt + now[deltaIndex].size));
    for (const DeltaRec& d : now) {
        const auto e = static_cast<std::size_t>(d.entryPos - 1);
        ASSERT_LT(e + 6, dataAt);
        tb::putI16(patched, e, d.size);
        tb::putI32(patched, e + 2, d.ptr);
    }
    const auto field = static_cast<std::size_t>(session->style.header.spriteGraphicsSizeOffset());
    EXPECT_EQ(tb::getI32(after, field), tb::getI32(before, field) + 4);
    tb::putI32(patched, field, tb::getI32(after, field));
    EXPECT_TRUE(patched == after);
}

TEST_F(DeltaSetFixture, BadPicturesAreRefusedWithAMessageAndChangeNothing) {
    openSample();
    selectAt(spritesWithDeltas(*session).front());
    const SpriteRec sprite = selected();
    const int width = sprite.W * sprite.delta_count;
    const auto runsBefore = allRuns();
    const fs::path bmp = dir / "set.bmp", png = dir / "set.png";
    ASSERT_TRUE(exportDeltaSet(*session, platform, bmp, false));
    if (pngSupported()) {
        ASSERT_TRUE(exportDeltaSet(*session, platform, png, false));
    }
    const auto goodBmp = tb::readFile(bmp);
    const auto goodPng = pngSupported() ? tb::readFile(png) : std::vector<std::uint8_t>{};
    const std::vector<std::uint8_t> picture(static_cast<std::size_t>(width + 1) * sprite.H, 1);

    struct Case {
        std::string name;
        std::function<void()> make;
        std::string message; // how the shown message starts
    };
    std::vector<Case> cases = {
        {"wide.bmp",
         [&] {
             EXPECT_TRUE(writeBmp(*session, platform, dir / "wide.bmp", picture, sprite.clut,
                                  width + 1, sprite.H));
         },
         "Imported sprite must be of the exact same size as sprite.\rBMP image should be (" +
             std::to_string(width) + "," + std::to_string(sprite.H) + ")"},
        {"wide.png",
         [&] {
             ASSERT_TRUE(writePicture(*session, platform, dir / "wide.png", picture, sprite.clut,
                                      width + 1, sprite.H));
         },
         "Imported sprite must be of the exact same size as sprite.\rPNG image should be ("},
        {"depth.bmp",
         [&] {
             auto b = goodBmp;
             b[28] = 24;
             tb::writeFile(dir / "depth.bmp", b);
         },
         "Imported sprite must be 8 bit BMP file."},
        {"depth.png",
         [&] {
             auto b = goodPng;
             b[24] = 16;
             tb::writeFile(dir / "depth.png", b);
         },
         "Imported sprite must be 8 bit palette PNG file."},
        {"text.bmp", [&] { tb::writeFile(dir / "text.bmp", std::vector<std::uint8_t>(2000, 'a')); },
         "Imported sprite must be 8 bit BMP file."},
        {"text.png", [&] { tb::writeFile(dir / "text.png", std::vector<std::uint8_t>(2000, 'a')); },
         "Imported sprite must be a PNG file."},
        {"cut.bmp",
         [&] {
             tb::writeFile(dir / "cut.bmp",
                           {goodBmp.begin(), goodBmp.begin() + goodBmp.size() / 2});
         },
         "Imported sprite file size is too small."},
        {"cut.png",
         [&] {
             tb::writeFile(dir / "cut.png",
                           {goodPng.begin(), goodPng.begin() + goodPng.size() / 2});
         },
         "Imported sprite PNG file is damaged or incomplete."},
        {"missing.png", [] {}, "Sprite to be imported named "},
        {"any.png", [&] { tb::writeFile(dir / "any.png", goodBmp); },
         "Imported sprite PNG file is damaged or incomplete.\rPNG pictures are not supported"},
    };
    // A build without libpng refuses every PNG with its reason; one with libpng reads them.
    std::erase_if(cases, [](const Case& c) {
        const bool pngCase = c.name.ends_with(".png") && c.name != "missing.png";
        return pngCase && (c.name == "any.png") == pngSupported();
    });
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        c.make();
        platform.shownMessages.clear();
        for (const bool clean : {false, true}) {
            EXPECT_FALSE(importDeltaSet(*session, platform, dir / c.name, clean));
            ASSERT_FALSE(messages().empty());
            EXPECT_EQ(messages().back().rfind(c.message, 0), 0u) << messages().back();
        }
        EXPECT_EQ(allRuns(), runsBefore);
        EXPECT_FALSE(session->style.gDeltasChanged || session->style.gPagesChanged);
    }
}

TEST_F(DeltaSetFixture, PixelAtTheTopLeftIsRefusedAndAPictureWithoutDeltasIsNotExported) {
    openSample();
    selectAt(spritesWithDeltas(*session).front());
    const SpriteRec sprite = selected();
    const int width = sprite.W * sprite.delta_count;
    const fs::path file = dir / (pngSupported() ? "clean.png" : "clean.bmp");
    ASSERT_TRUE(exportDeltaSet(*session, platform, file, true));
    std::vector<std::uint8_t> picture;
    ASSERT_TRUE(readPicture(*session, platform, file, sprite.clut, width, sprite.H, picture));
    picture[static_cast<std::size_t>(sprite.W)] = 12; // frame 1's top-left pixel
    ASSERT_TRUE(writePicture(*session, platform, file, picture, sprite.clut, width, sprite.H));
    const auto runsBefore = allRuns();
    const DeltaSetImport refused = importDeltaSet(*session, platform, file, true);
    ASSERT_FALSE(refused);
    ASSERT_FALSE(messages().empty());
    EXPECT_EQ(refused.message(), messages().back()); // the refusal carries what was shown
    EXPECT_EQ(messages().back(),
              "Delta 1 (frame 2 of " + std::to_string(sprite.delta_count) +
                  ") cannot be imported: its first changed pixel is the sprite's top-left pixel "
                  "(0,0), where no delta can start.\rNothing was changed.");
    EXPECT_EQ(allRuns(), runsBefore);
    EXPECT_FALSE(session->style.gDeltasChanged);

    // A sprite without deltas: a message, no file.
    std::pair<int, int> plain{-1, -1};
    for (int sib = 1; sib <= session->sprites.pageCount(0) && plain.first < 0; ++sib)
        if (session->sprites.pageSprites[0][sib].delta_count == 0) plain = {0, sib};
    ASSERT_GE(plain.first, 0);
    selectAt(plain);
    EXPECT_FALSE(exportDeltaSet(*session, platform, dir / "none.bmp", false));
    EXPECT_FALSE(fs::exists(dir / "none.bmp"));
    EXPECT_NE(messages().back().find("has no deltas"), std::string::npos);
    EXPECT_FALSE(importDeltaSet(*session, platform, file, true));
}

TEST_F(DeltaSetFixture, SpriteExportAndImportTakePngByTheName) {
    if (!pngSupported()) GTEST_SKIP() << kPngUnsupported << " (TORQUIL_PNG=OFF)";
    openSample();
    selectAt(spritesWithDeltas(*session).front());
    const auto before = spritePixels(*session, selected());
    const fs::path file = dir / "car.png";
    ASSERT_TRUE(exportSpriteTo(*session, platform, file));
    const auto bytes = tb::readFile(file);
    const PngDecoded d = decodeIndexedPng(bytes, selected().W, selected().H);
    ASSERT_EQ(d.status, PngStatus::Ok);
    EXPECT_EQ(d.picture.pixels, before);
    ASSERT_TRUE(importSpriteFrom(*session, platform, file));
    EXPECT_EQ(spritePixels(*session, selected()), before);
    EXPECT_TRUE(messages().empty());
    EXPECT_FALSE(session->style.gClutChanged);
}

// ---------------------------------------------------------------- torquil-cli

TEST(CliDeltas, ListExportImportAndExitStatus) {
    tb::TempDir dir;
    tb::writeSampleLevel(dir.path());
    const std::string style = (dir / "STYLE001.G24").string();
    const std::string work = (dir / "work").string();
    // The first car sprite with deltas.
    std::string asn;
    for (int n = 1; n < 200 && asn.empty(); ++n) {
        const auto r = tb::runCli({"deltas", "--workdir", work, style, std::to_string(n)});
        if (r.status == 0 && !tb::contains(r.out, ": 0 deltas")) asn = std::to_string(n);
    }
    ASSERT_FALSE(asn.empty());
    const auto listed = tb::runCli({"deltas", "--workdir", work, style, asn, "--json"});
    ASSERT_EQ(listed.status, 0) << listed.err;
    const auto j = nlohmann::json::parse(listed.out);
    ASSERT_GT(j["count"].get<int>(), 0);
    EXPECT_EQ(j["deltas"].size(), j["count"].get<std::size_t>());
    EXPECT_GT(j["deltas"][0]["size"].get<int>(), 0);
    EXPECT_GT(j["deltas"][0]["runs"].get<int>(), 0);
    EXPECT_TRUE(j["deltas"][0]["box"].is_object());
    EXPECT_EQ(j["deltas"][0]["outside"].get<int>(), 0);

    const auto before = tb::readFile(style);
    // A build without libpng exchanges the set as BMP.
    const std::string setName = pngSupported() ? "set.png" : "set.bmp";
    const std::string png = (dir / setName).string();
    const auto exported =
        tb::runCli({"export-deltas", "--workdir", work, style, asn, "--clean", "-o", png});
    ASSERT_EQ(exported.status, 0) << exported.err;
    EXPECT_TRUE(tb::contains(exported.out, setName));
    const auto imported =
        tb::runCli({"import-deltas", "--workdir", work, style, asn, png, "--clean"});
    ASSERT_EQ(imported.status, 0) << imported.err;
    // The set just exported: the style file and its .bak are not written.
    EXPECT_EQ(imported.out, "imported: " + png + "\nnothing changed\n");
    EXPECT_EQ(tb::readFile(style), before);
    EXPECT_FALSE(fs::exists(style + ".bak"));

    // Refused pictures and bad command lines.
    tb::writeFile(dir / "junk.png", std::vector<std::uint8_t>(100, 1));
    EXPECT_EQ(
        tb::runCli({"import-deltas", "--workdir", work, style, asn, (dir / "junk.png").string()})
            .status,
        1);
    EXPECT_EQ(tb::readFile(style), before);
    EXPECT_EQ(tb::runCli({"export-deltas", style, asn}).status, 2);
    EXPECT_EQ(tb::runCli({"deltas", style}).status, 2);
}
