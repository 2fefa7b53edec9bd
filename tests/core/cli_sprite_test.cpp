#include "cli/cli.h"
#include "style_builder.h"
#include "test_dir.h"

#include "sprite_fixture.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

struct CliResult {
    int status;
    std::string out, err;
};

CliResult runCli(std::vector<std::string> args) {
    args.insert(args.begin(), "torquil-cli");
    std::ostringstream out, err;
    int status = cli::run(args, out, err);
    return {status, out.str(), err.str()};
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) result.push_back(line);
    return result;
}

// The lines from the first one starting with `first`, `count` of them.
std::vector<std::string> block(const std::string& text, const std::string& first,
                               std::size_t count) {
    const auto all = lines(text);
    auto it = std::find_if(all.begin(), all.end(),
                           [&](const std::string& l) { return l.starts_with(first); });
    const auto left = static_cast<std::size_t>(all.end() - it);
    return {it, it + static_cast<std::ptrdiff_t>(std::min(count, left))};
}

tb::StyleSpec threeSpriteSpec(bool is24) {
    tb::StyleSpec spec;
    spec.is24 = is24;
    spec.cluts = {tb::rampClut(0, 0, 0), tb::rampClut(1, 1, 1), tb::rampClut(2, 2, 2)};
    auto a = tb::spriteAt(0, 10, 20, 4, 3, 2);
    tb::DeltaSpec d;
    d.runs = {{1, {3, 3}}};
    a.deltas = {d, d};
    auto b = tb::spriteAt(1, 30, 40, 2, 2, 1);
    b.deltas = {d};
    spec.sprites = {a, tb::spriteAt(0, 0, 0, 1, 1), b};
    spec.spriteNumbers[tb::SPR_ARROW] = 1;
    spec.spriteNumbers[tb::SPR_CAR] = 2;
    return spec;
}

std::vector<std::string> spriteNumberLines() {
    std::vector<std::string> out;
    for (const char* name : kSpriteTypeNames)
        out.push_back(std::string(" ") + name + ": " +
                      (std::string(name) == "SPR_ARROW" ? "1"
                       : std::string(name) == "SPR_CAR" ? "2"
                                                        : "0"));
    return out;
}

std::vector<std::string> concat(std::vector<std::string> a, const std::vector<std::string>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

} // namespace

TEST(CliOpenSprites, G24DetailsOfColourTablesSpriteInfoAndSpriteNumbers) {
    tb::TempDir dir;
    const auto spec = threeSpriteSpec(true);
    const auto o = tb::sectionOffsets(spec);
    tb::writeFile(dir / "STYLE001.G24", tb::buildStyle(spec));
    auto r = runCli({"open", "--workdir", dir.path().string(), (dir / "STYLE001.G24").string()});
    ASSERT_EQ(r.status, 0) << r.err;
    const auto expected = concat(
        {"CLUTS loaded:63", "loadSpriteInfoSeek:" + std::to_string(o.spriteInfo.offset + 1),
         "3 sprite_infos loaded", "1 highest block number", "2 highest CLUT number referenced"},
        spriteNumberLines());
    EXPECT_EQ(block(r.out, "CLUTS loaded:", expected.size()), expected);
}

TEST(CliOpenSprites, GryDetailsPutThe8BitPaletteAfterSpriteInfo) {
    tb::TempDir dir;
    const auto spec = threeSpriteSpec(false);
    const auto o = tb::sectionOffsets(spec);
    tb::writeFile(dir / "STYLE002.GRY", tb::buildStyle(spec));
    auto r = runCli({"open", "--workdir", dir.path().string(), (dir / "STYLE002.GRY").string()});
    ASSERT_EQ(r.status, 0) << r.err;
    const auto expected = concat({"loadSpriteInfoSeek:" + std::to_string(o.spriteInfo.offset + 1),
                                  "3 sprite_infos loaded", "1 highest block number",
                                  "load8bitPal Seek:" + std::to_string(o.palette.offset + 1)},
                                 spriteNumberLines());
    EXPECT_EQ(block(r.out, "loadSpriteInfoSeek:", expected.size()), expected);
}

TEST(CliOpenSprites, TilesOptionLoadsThePaletteThenThePages) {
    tb::TempDir dir;
    const auto g24 = threeSpriteSpec(true);
    auto gry = threeSpriteSpec(false);
    tb::writeFile(dir / "STYLE001.G24", tb::buildStyle(g24));
    tb::writeFile(dir / "STYLE002.GRY", tb::buildStyle(gry));
    auto r = runCli(
        {"open", "--tiles", "--workdir", dir.path().string(), (dir / "STYLE001.G24").string()});
    ASSERT_EQ(r.status, 0) << r.err;
    auto got = block(r.out, "CLUTS loaded:", 2);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0], "CLUTS loaded:63");
    EXPECT_TRUE(got[1].starts_with("LoadBlocks final seek:")) << got[1];
    EXPECT_EQ(r.out.find("sprite_infos"), std::string::npos);

    r = runCli(
        {"open", "--tiles", "--workdir", dir.path().string(), (dir / "STYLE002.GRY").string()});
    ASSERT_EQ(r.status, 0) << r.err;
    got = block(r.out, "load8bitPal Seek:", 2);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0],
              "load8bitPal Seek:" + std::to_string(tb::sectionOffsets(gry).palette.offset + 1));
    EXPECT_TRUE(got[1].starts_with("LoadBlocks final seek:")) << got[1];
}

TEST(CliSprite, PrintsTheRecordOfOneSprite) {
    tb::TempDir dir;
    tb::writeFile(dir / "STYLE001.G24", tb::buildStyle(threeSpriteSpec(true)));
    const std::string style = (dir / "STYLE001.G24").string();
    auto r = runCli({"sprite", "--workdir", dir.path().string(), style, "3"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(lines(r.out), (std::vector<std::string>{"ASN:3", "page:1", "SIB:1", "xo:30", "yo:40",
                                                      "W:2", "H:2", "size:4", "clut:1",
                                                      "raw clut:1", "delta_count:1", "deltas:2"}));

    r = runCli({"sprite", "--json", "--workdir", dir.path().string(), style, "1"});
    ASSERT_EQ(r.status, 0) << r.err;
    const auto j = nlohmann::json::parse(r.out);
    EXPECT_EQ(j["SIB"], 1);
    EXPECT_EQ(j["clut"], 2);
    EXPECT_EQ(j["deltas"], nlohmann::json::array({0, 1}));

    for (const char* missing : {"4", "0", "-1"}) {
        r = runCli({"sprite", "--workdir", dir.path().string(), style, missing});
        EXPECT_EQ(r.status, 1);
        EXPECT_EQ(r.out, "");
        EXPECT_TRUE(r.err.ends_with(std::string("ASN:") + missing + " not found.\n")) << r.err;
    }

    r = runCli({"sprite", "--tiles", "--workdir", dir.path().string(), style, "6"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(block(r.out, "ASN:", 4),
              (std::vector<std::string>{"ASN:6", "kind:lidTile", "page:0", "SIB:6"}));
}

TEST(CliSprite, FailedLoadExitsOne) {
    tb::TempDir dir;
    auto r =
        runCli({"sprite", "--workdir", dir.path().string(), (dir / "STYLE001.G24").string(), "1"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "");
}

TEST(CliOpenSprites, DumpOptionWritesSpriteInfoPaletteIndexAndClutFiles) {
    tb::TempDir dir;
    tb::writeFile(dir / "STYLE001.G24", tb::buildStyle(threeSpriteSpec(true)));
    auto r = runCli({"open", "--dump", "clut,spriteinfo", "--workdir", dir.path().string(),
                     (dir / "STYLE001.G24").string()});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(std::filesystem::exists(dir / "1SPRINFO.txt"));
    EXPECT_TRUE(std::filesystem::exists(dir / "1PALINDEX.txt"));
    EXPECT_TRUE(std::filesystem::exists(dir / "1CLUT0.txt"));
    EXPECT_FALSE(std::filesystem::exists(dir / "1CLUT1.txt"));
}
