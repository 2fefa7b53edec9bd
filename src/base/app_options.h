#pragma once
// What the program was started with; shared by every session of a run.

#include <filesystem>
#include <string>

namespace torquil {

// The Debug menu's check marks: which dump files loaders write.
struct DumpFlags {
    bool carInfo = false, spriteInfo = false, clut = false, delta = false;
};

struct AppOptions {
    bool debugMode = false;        // gDebugMode: "-d" anywhere on the command line
    std::filesystem::path workDir; // "the program's directory": temp files, dumps, BMPs
    DumpFlags dumps;
    // The load keeps the style file's bytes, read in one read, for a save that follows (a
    // command that saves); otherwise it reads through a window and the save reads the file.
    bool keepStyleContent = false;

    // Path of a file in the program's directory.
    std::filesystem::path workPath(const std::string& name) const { return workDir / name; }
};

} // namespace torquil
