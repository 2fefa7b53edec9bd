// The work folder an installed program or a portable copy picks, and where the Read Me is found.

#include "base/work_dir.h"

#include "test_dir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>

using namespace torquil;
namespace fs = std::filesystem;

namespace {

void touch(const fs::path& file) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << "x";
}

TEST(WorkDir, AnInstalledLayoutIsABinFolderWithShareBesideIt) {
    torquil::testing::TempDir dir;
    fs::create_directories(dir / "usr" / "bin");
    fs::create_directories(dir / "usr" / "share");
    fs::create_directories(dir / "opt" / "bin");
    fs::create_directories(dir / "build" / "src");
    EXPECT_TRUE(isInstalledProgramFolder(dir / "usr" / "bin"));
    EXPECT_TRUE(isInstalledProgramFolder(dir.path() / "usr" / "bin" / ""));
    EXPECT_TRUE(isInstalledProgramFolder(dir / "usr" / "share" / ".." / "bin"));
    EXPECT_FALSE(isInstalledProgramFolder(dir / "opt" / "bin")); // no share beside it
    EXPECT_FALSE(isInstalledProgramFolder(dir / "build" / "src"));
    EXPECT_FALSE(isInstalledProgramFolder(dir / "missing" / "bin"));
}

#if defined(__linux__)
// XDG_DATA_HOME pointed into the test's folder while it lives.
class DataHome {
public:
    explicit DataHome(const fs::path& home) {
        if (const char* old = std::getenv("XDG_DATA_HOME")) old_ = old;
        setenv("XDG_DATA_HOME", home.c_str(), 1);
    }
    ~DataHome() {
        if (old_)
            setenv("XDG_DATA_HOME", old_->c_str(), 1);
        else
            unsetenv("XDG_DATA_HOME");
    }

private:
    std::optional<std::string> old_;
};

TEST(WorkDir, AnInstalledProgramWorksInTheUsersDataFolderEvenWhereItsFolderIsWritable) {
    torquil::testing::TempDir dir;
    DataHome home(dir / "data");
    touch(dir / "usr" / "bin" / "torquil-cli");
    fs::create_directories(dir / "usr" / "share");
    touch(dir / "build" / "src" / "torquil-cli");

    const fs::path installed = defaultWorkDir(dir / "usr" / "bin" / "torquil-cli");
    EXPECT_EQ(installed, dir / "data" / "torquil");
    EXPECT_TRUE(fs::is_directory(installed));
    // A build folder or a portable copy keeps its own folder.
    EXPECT_EQ(defaultWorkDir(dir / "build" / "src" / "torquil-cli"), dir / "build" / "src");
}
#endif

TEST(WorkDir, ReadmeIsLookedForInTheWorkFolderBesideTheProgramThenInTheInstalledDocs) {
    torquil::testing::TempDir dir;
    const fs::path work = dir / "work";
    const fs::path bin = dir / "prefix" / "bin";
    fs::create_directories(work);
    fs::create_directories(bin);
    // None there: the one beside the program is named.
    EXPECT_EQ(findReadme(work, bin), bin / "readme.txt");

    const fs::path docs = dir / "prefix" / "share" / "doc" / "torquil" / "readme.txt";
    touch(docs);
    EXPECT_EQ(findReadme(work, bin), docs);
    touch(bin / "readme.txt");
    EXPECT_EQ(findReadme(work, bin), bin / "readme.txt");
    touch(work / "readme.txt");
    EXPECT_EQ(findReadme(work, bin), work / "readme.txt");
}

} // namespace
