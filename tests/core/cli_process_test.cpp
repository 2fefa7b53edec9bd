// torquil-cli run as a process of its own: its arguments pass through the system's command line
// and its output through the real standard output, as a script sees them.

#include "base/utf8_path.h"
#include "base/version.h"
#include "cli_runner.h"
#include "sample_level.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include <sys/wait.h>
#endif

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

fs::path cliProgram() {
    std::string program = TORQUIL_CLI_PATH;
#if defined(_WIN32)
    // A cross build runs its tests under wine, which shows the build machine's root as Z:.
    if (!program.empty() && program[0] == '/') program = "Z:" + program;
#endif
    return pathFromUtf8(program);
}

// Runs the program with the arguments, standard output and error going to files; returns the
// exit status.
int runProgram(const std::vector<fs::path>& args, const fs::path& out, const fs::path& err) {
#if defined(_WIN32)
    auto quote = [](const fs::path& p) { return L"\"" + p.wstring() + L"\""; };
    std::wstring command = quote(cliProgram());
    for (const auto& a : args) command += L" " + quote(a);
    command += L" >" + quote(out) + L" 2>" + quote(err);
    // cmd.exe drops the first and the last quote of the whole line.
    return _wsystem((L"\"" + command + L"\"").c_str());
#else
    auto quote = [](const fs::path& p) {
        std::string quoted = "'";
        for (char c : p.string()) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
        return quoted + "'";
    };
    std::string command = quote(cliProgram());
    for (const auto& a : args) command += " " + quote(a);
    command += " >" + quote(out) + " 2>" + quote(err);
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
}

std::string bytesOf(const fs::path& file) {
    const auto bytes = tb::readFile(file);
    return std::string(bytes.begin(), bytes.end());
}

} // namespace

TEST(CliProcess, FolderNamedInOtherScriptsOpensAndOutputIsByteExact) {
    tb::TempDir dir;
    // Cyrillic, Japanese and Greek letters, which no single Windows code page holds together.
    const fs::path level = dir.path() / pathFromUtf8("Уровень 日本語 Δ");
    fs::create_directories(level);
    tb::writeSampleLevel(level);
    const fs::path style = level / "STYLE001.G24";
    const fs::path work = level / pathFromUtf8("работа");

    const int status =
        runProgram({"open", "--dump", "carinfo,spriteinfo,clut", "--workdir", work, style},
                   dir / "out.txt", dir / "err.txt");
    EXPECT_EQ(status, 0) << bytesOf(dir / "err.txt");

    // The same command run inside this process writes to strings: the program's standard output
    // and error hold exactly those bytes (no CR LF on any system).
    const auto inside = tb::runCli(
        {"open", "--dump", "carinfo,spriteinfo,clut", "--workdir", utf8Of(work), utf8Of(style)});
    ASSERT_EQ(inside.status, 0) << inside.err;
    EXPECT_EQ(bytesOf(dir / "out.txt"), inside.out);
    EXPECT_EQ(bytesOf(dir / "err.txt"), inside.err);
    EXPECT_TRUE(tb::contains(inside.err, "caption: Torquil: STYLE001.G24")) << inside.err;

    // The dump files went into the folder with the non-Latin name, their lines ended by LF alone.
    int dumps = 0;
    for (const auto& entry : fs::directory_iterator(work)) {
        if (entry.path().extension() != ".txt") continue;
        ++dumps;
        const std::string text = bytesOf(entry.path());
        EXPECT_FALSE(text.empty()) << utf8Of(entry.path());
        EXPECT_EQ(text.find('\r'), std::string::npos) << utf8Of(entry.path());
    }
    EXPECT_GE(dumps, 2);
}

TEST(CliProcess, VersionPrintsTheProjectVersion) {
    const auto inside = tb::runCli({"--version"});
    EXPECT_EQ(inside.status, 0);
    EXPECT_EQ(inside.out, std::string("torquil-cli ") + kVersion + "\n");

    tb::TempDir dir;
    EXPECT_EQ(runProgram({"--version"}, dir / "out.txt", dir / "err.txt"), 0);
    EXPECT_EQ(bytesOf(dir / "out.txt"), inside.out);
}
