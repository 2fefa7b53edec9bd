#pragma once
// What the program was started with; shared by every session of a run.

#include <filesystem>
#include <string>

namespace torquil {

// The Debug menu's check marks: which dump files loaders write.
struct DumpFlags {
    bool carInfo = false, spriteInfo = false, clut = false, delta = false;
};

// What a save does with a file that has other names (hard links), which a replace splits off:
// the window asks, the command line refuses unless told (--break-links).
enum class LinkPolicy { Ask, Refuse, Break };

struct AppOptions {
    bool debugMode = false;        // gDebugMode: "-d" anywhere on the command line
    std::filesystem::path workDir; // "the program's directory": temp files, dumps, BMPs
    DumpFlags dumps;
    LinkPolicy links = LinkPolicy::Ask;
    // A face that shows no pages (the command line): the load and the edits paint no page image,
    // and edits keep no undo steps (nothing can take them back).
    bool showPages = true;
    bool keepUndo = true;
    // The load reads the style file whole in one read and keeps its bytes with the file's stamp;
    // the save starts from them while the file still has that stamp (a command that saves).
    bool keepStyleContent = false;

    // Path of a file in the program's directory.
    [[nodiscard]] std::filesystem::path workPath(const std::string& name) const {
        return workDir / name;
    }
};

} // namespace torquil
