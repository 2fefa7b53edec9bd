// Arguments that would make a command write where it must not: an option's name taken as a file
// name, or an output that is one of the level's files or one of the command's own inputs.

#include "cli_runner.h"
#include "sample_level.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <map>

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;
using tb::contains;
using tb::runCli;

namespace {

struct Level {
    tb::TempDir dir;
    fs::path style = dir.path() / "STYLE001.G24";
    Level() { tb::writeSampleLevel(dir.path()); }
    std::string at(const std::string& name) const { return (dir.path() / name).string(); }

    // Every file of the folder with its bytes.
    std::map<fs::path, std::vector<uint8_t>> snapshot() const {
        std::map<fs::path, std::vector<uint8_t>> files;
        for (const auto& entry : fs::recursive_directory_iterator(dir.path()))
            if (entry.is_regular_file()) files[entry.path()] = tb::readFile(entry.path());
        return files;
    }
};

} // namespace

TEST(CliArguments, AnOptionWordWhereAFileBelongsIsRefusedAndNamed) {
    Level level;
    const std::string style = level.style.string(), work = level.at("work");
    const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
        {"--force", {"export-sprite", "--workdir", work, "-o", "--force", style, "1"}},
        {"--clean", {"export-deltas", "--workdir", work, style, "1", "-o", "--clean"}},
        {"--play", {"sound", "--workdir", work, style, "3", "-o", "--play"}},
        {"--x", {"open", "--workdir", "--x", style}},
    };
    const auto before = level.snapshot();
    for (const auto& [word, args] : cases) {
        const auto r = runCli(args);
        EXPECT_EQ(r.status, 2) << args[0];
        EXPECT_TRUE(contains(r.err, "\"" + word + "\" looks like an option")) << r.err;
        EXPECT_FALSE(fs::exists(word)) << args[0] << " made a file named " << word;
    }
    EXPECT_EQ(level.snapshot(), before);
    // A name that begins with "-" is still possible when written as a path.
    const auto named = runCli({"export-sprite", "--workdir", work, "-o",
                               (level.dir.path() / "-car.bmp").string(), style, "1"});
    EXPECT_EQ(named.status, 0) << named.err;
    EXPECT_TRUE(fs::exists(level.dir.path() / "-car.bmp"));
}

TEST(CliArguments, AnOutputThatIsALevelFileOrAnInputIsRefusedAndEveryFileKept) {
    Level level;
    const std::string style = level.style.string(), work = level.at("work");
    const std::string fxt = level.at("ENGLISH.FXT");
    const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
        {"is the level's style file",
         {"export-sprite", "--workdir", work, "-o", style, style, "1"}},
        // The backup a later save would make, named in another case.
        {"is the backup of the level's style file",
         {"export-sprite", "--workdir", work, "-o", level.at("style001.g24.BAK"), style, "1"}},
        {"is the level's ENGLISH.FXT", {"sound", "--workdir", work, style, "3", "-o", fxt}},
        {"is the level's sound bank (RAW)",
         {"export-deltas", "--workdir", work, style, "1", "-o",
          level.at("audio/../audio/LEVEL001.RAW")}},
        {"is the coded text file being read", {"fxt2txt", fxt, fxt}},
        {"is the text file being read", {"txt2fxt", fxt, fxt}},
        {"is the level's style file",
         {"gc3", "write", style, style, fxt, fxt, level.at("./STYLE001.G24")}},
        {"is the level's ENGLISH.FXT",
         {"gc3", "write", style, style, fxt, level.at("names.fxt"), fxt}},
    };
    const auto before = level.snapshot();
    for (const auto& [why, args] : cases) {
        const auto r = runCli(args);
        EXPECT_EQ(r.status, 1) << args[0] << " " << args.back();
        EXPECT_TRUE(contains(r.err, why)) << r.err;
        EXPECT_TRUE(contains(r.err, "nothing was written")) << r.err;
    }
    EXPECT_EQ(level.snapshot(), before);
    // Any other name is written.
    const auto r =
        runCli({"export-sprite", "--workdir", work, "-o", level.at("car.bmp"), style, "1"});
    EXPECT_EQ(r.status, 0) << r.err;
}
