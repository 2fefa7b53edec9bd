#include "cli_runner.h"

#include "sprite_fixture.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace torquil;
namespace tb = torquil::testing;
using tb::runCli;

namespace {

// `count` lines of text from the first one that starts with `first`.
std::vector<std::string> block(const std::string& text, const std::string& first,
                               std::size_t count) {
    const auto all = tb::lines(text);
    auto it = std::find_if(all.begin(), all.end(),
                           [&](const std::string& l) { return l.starts_with(first); });
    return {it, it + static_cast<std::ptrdiff_t>(
                         std::min<std::size_t>(count, static_cast<std::size_t>(all.end() - it)))};
}

tb::StyleSpec threeSprites(bool is24) {
    tb::StyleSpec layout;
    layout.is24 = is24;
    layout.cluts = {tb::rampClut(0, 0, 0), tb::rampClut(1, 1, 1), tb::rampClut(2, 2, 2)};
    tb::DeltaSpec d;
    d.runs = {{1, {3, 3}}};
    auto a = tb::spriteAt(0, 10, 20, 4, 3, 2);
    a.deltas = {d, d};
    auto b = tb::spriteAt(1, 30, 40, 2, 2, 1);
    b.deltas = {d};
    layout.sprites = {a, tb::spriteAt(0, 0, 0, 1, 1), b};
    layout.spriteNumbers[tb::SPR_CAR] = 3;
    return layout;
}

} // namespace

TEST(CliOpenSprites, DetailsOfColourTablesSpriteInfoAndSpriteNumbers) {
    tb::TempDir dir;
    for (bool is24 : {true, false}) {
        const auto layout = threeSprites(is24);
        const auto o = tb::sectionOffsets(layout);
        const auto path = dir / (is24 ? "STYLE001.G24" : "STYLE002.GRY");
        tb::writeFile(path, tb::buildStyle(layout));
        auto r = runCli({"open", "--workdir", dir.path().string(), path.string()});
        ASSERT_EQ(r.status, 0) << r.err;
        const std::string seek = "loadSpriteInfoSeek:" + std::to_string(o.spriteInfo.offset + 1);
        // .G24: the CLUTs before the sprite info; .GRY: the 8-bit palette after it.
        const auto expected =
            is24 ? std::vector<std::string>{"CLUTS loaded:63",
                                            seek,
                                            "3 sprite_infos loaded",
                                            "1 highest block number",
                                            "2 highest CLUT number referenced",
                                            " SPR_ARROW: 0"}
                 : std::vector<std::string>{
                       seek, "3 sprite_infos loaded", "1 highest block number",
                       "load8bitPal Seek:" + std::to_string(o.palette.offset + 1), " SPR_ARROW: 0"};
        EXPECT_EQ(block(r.out, expected[0], expected.size()), expected);
        EXPECT_EQ(block(r.out, " SPR_CAR:", 1)[0], " SPR_CAR: 3");

        r = runCli({"open", "--tiles", "--workdir", dir.path().string(), path.string()});
        ASSERT_EQ(r.status, 0) << r.err;
        const auto tiles = block(r.out, is24 ? "CLUTS loaded:" : "load8bitPal Seek:", 2);
        ASSERT_EQ(tiles.size(), 2u);
        EXPECT_TRUE(tiles[1].starts_with("LoadBlocks final seek:")) << tiles[1];
    }
}

TEST(CliSprite, PrintsTheRecordOrSaysItIsMissing) {
    tb::TempDir dir;
    tb::writeFile(dir / "STYLE001.G24", tb::buildStyle(threeSprites(true)));
    const std::string style = (dir / "STYLE001.G24").string();
    auto r = runCli({"sprite", "--workdir", dir.path().string(), style, "3"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "ASN:3\npage:1\nSIB:1\nxo:30\nyo:40\nW:2\nH:2\nsize:4\nclut:1\nraw clut:1\n"
                     "delta_count:1\ndeltas:2\n");

    r = runCli({"sprite", "--json", "--workdir", dir.path().string(), style, "1"});
    const auto j = nlohmann::json::parse(r.out);
    EXPECT_EQ(j["deltas"], nlohmann::json::array({0, 1}));
    EXPECT_EQ(j["clut"], 2);

    for (const char* missing : {"4", "0"}) {
        r = runCli({"sprite", "--workdir", dir.path().string(), style, missing});
        EXPECT_EQ(r.status, 1);
        EXPECT_EQ(r.out, "");
        EXPECT_TRUE(r.err.ends_with(std::string("ASN:") + missing + " not found.\n")) << r.err;
    }
    r = runCli({"sprite", "--tiles", "--workdir", dir.path().string(), style, "6"});
    EXPECT_EQ(block(r.out, "ASN:", 2), (std::vector<std::string>{"ASN:6", "kind:lidTile"}));
}

TEST(CliOpenSprites, DumpOptionWritesSpriteInfoPaletteIndexAndClutFiles) {
    tb::TempDir dir;
    tb::writeFile(dir / "STYLE001.G24", tb::buildStyle(threeSprites(true)));
    auto r = runCli({"open", "--dump", "clut,spriteinfo", "--workdir", dir.path().string(),
                     (dir / "STYLE001.G24").string()});
    ASSERT_EQ(r.status, 0) << r.err;
    for (const char* name : {"1SPRINFO.txt", "1PALINDEX.txt", "1CLUT0.txt"})
        EXPECT_TRUE(std::filesystem::exists(dir / name)) << name;
}
