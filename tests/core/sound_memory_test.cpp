// A sound bank is read by record: torquil-cli run as a process of its own on a sparse 3 GB RAW
// file, its peak memory taken from the system (wait4) when it ends.

#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#if defined(__linux__)
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

#if defined(__linux__)
// Runs torquil-cli with `args`; its exit status, and its peak resident memory in kB.
int runMeasured(const std::vector<std::string>& args, long& peakKb) {
    std::vector<char*> argv;
    std::string program = TORQUIL_CLI_PATH;
    argv.push_back(program.data());
    std::vector<std::string> copies = args;
    for (std::string& a : copies) argv.push_back(a.data());
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        // Quiet: the test looks only at the status and the files.
        freopen("/dev/null", "w", stdout);
        freopen("/dev/null", "w", stderr);
        execv(program.c_str(), argv.data());
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child) return -1;
    peakKb = usage.ru_maxrss;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(SoundMemory, ARecordOfASparse3GbRawIsWrittenInUnder64Mb) {
    tb::TempDir dir;
    fs::create_directories(dir / "audio");
    const std::int32_t far = 2'000'000'001; // deep inside the file
    std::vector<std::uint8_t> sdt(36);
    for (int i = 0; i < 3; ++i) {
        tb::putI32(sdt, 12 * i, far + i * 40'000'000);
        tb::putI32(sdt, 12 * i + 4, 40'000'000); // 40 MB of sound
        tb::putI32(sdt, 12 * i + 8, 22050);
    }
    tb::writeFile(dir / "audio" / "LEVEL001.SDT", sdt);
    tb::writeFile(dir / "audio" / "LEVEL001.RAW", {});
    fs::resize_file(dir / "audio" / "LEVEL001.RAW", 3ULL << 30); // sparse: no disk used
    tb::writeFile(dir / "STYLE001.G24", {0});

    const fs::path wav = dir / "far.wav";
    long peakKb = 0;
    ASSERT_EQ(
        runMeasured({"sound", (dir / "STYLE001.G24").string(), "1", "-o", wav.string()}, peakKb),
        0);
    EXPECT_EQ(fs::file_size(wav), 44u + 40'000'000u);
    EXPECT_LT(peakKb, 64 * 1024) << "peak memory " << peakKb << " kB";
    fs::remove(wav);
    ASSERT_EQ(
        runMeasured({"sound", (dir / "STYLE001.G24").string(), "2", "--exact", "-o", wav.string()},
                    peakKb),
        0);
    EXPECT_LT(peakKb, 64 * 1024) << "peak memory " << peakKb << " kB";
}
#endif

} // namespace
