// gc3 apply writes the level's pair through the same transaction as every other save: a file
// with a second name is refused unless told, then split from it, and both files change together.

#include "level_copies_fixture.h"

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

using PackCommitFixture = tb::LevelCopiesFixture;

TEST_F(PackCommitFixture, ApplyRefusesASecondNameOfTheStyleFileUnlessToldThenKeepsItOld) {
    load("pristine");
    const int asn = twoCars().first;
    const int model = session->cars.find(asn)->info.model;
    const fs::path pack = packOf("renamed", [&] {
        editField(asn, "max_speed", "91");
        ASSERT_TRUE(renameCarModel(*session, model, "Linked"));
    });
    copyPristine("level");
    const fs::path other = dir / "level" / "OTHER.G24";
    fs::create_hard_link(styleIn("level"), other);
    const auto style = tb::readFile(styleIn("level"));
    const auto fxt = tb::readFile(fxtIn("level"));
    const std::vector<std::string> args = {"gc3",
                                           "apply",
                                           pack.string(),
                                           styleIn("level").string(),
                                           fxtIn("level").string(),
                                           "--workdir",
                                           (dir / "work").string()};

    auto refused = tb::runCli(args);
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.err.find("Error writing GC3 file."), std::string::npos) << refused.err;
    EXPECT_NE(refused.err.find("has 2 names (hard links)"), std::string::npos) << refused.err;
    EXPECT_EQ(tb::readFile(styleIn("level")), style);
    EXPECT_EQ(tb::readFile(fxtIn("level")), fxt); // the pair: neither file is written
    EXPECT_FALSE(fs::exists(fxtIn("level").string() + ".bak"));

    auto told = args;
    told.push_back("--break-links");
    const auto applied = tb::runCli(told);
    ASSERT_EQ(applied.status, 0) << applied.err;
    EXPECT_EQ(tb::readFile(other), style);
    EXPECT_EQ(tb::readFile(styleIn("level").string() + ".bak"), style);
    EXPECT_EQ(tb::readFile(fxtIn("level").string() + ".bak"), fxt);
    load("level");
    EXPECT_EQ(field(asn, "max_speed"), "91");
    EXPECT_EQ(session->names.nameOf(model), "Linked");
}

} // namespace
