#include "cli_runner.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

using namespace torquil;
namespace tb = torquil::testing;
using tb::lines;
using tb::runCli;

TEST(CliOpen, PrintsDetailsOnStdoutAndTheCaptionOnStderr) {
    tb::TempDir dir;
    tb::StyleSpec layout;
    tb::writeFile(dir / "STYLE001.G24", tb::buildStyle(layout));
    auto r = runCli({"open", "--workdir", dir.path().string(), (dir / "STYLE001.G24").string()});
    EXPECT_EQ(r.status, 0) << r.err;
    auto out = lines(r.out);
    ASSERT_GE(out.size(), 3u);
    EXPECT_EQ(out[0], "version_code:336");
    EXPECT_EQ(out[2], "head_size:64");
    EXPECT_NE(r.err.find("caption: Torquil: STYLE001.G24 (Port Alder 24bit) [Sprites]\n"),
              std::string::npos);
}

TEST(CliOpen, MissingFileExitsOneWithTheMessage) {
    tb::TempDir dir;
    auto path = std::filesystem::absolute(dir / "STYLE009.G24");
    auto r = runCli({"open", "--workdir", dir.path().string(), path.string()});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "message: Error: " + path.string() + " file error or not found.\n");
}

TEST(CliOpen, UsageErrorsExitTwo) {
    EXPECT_EQ(runCli({"open"}).status, 2);
    EXPECT_EQ(runCli({"open", "--dump", "everything", "x.G24"}).status, 2);
    EXPECT_EQ(runCli({"frobnicate"}).status, 2);
    auto help = runCli({"open", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("--tiles"), std::string::npos);
}
