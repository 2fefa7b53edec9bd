#pragma once
// "The program's directory": where temporary files, dump files and exported BMPs go.

#include <filesystem>
#include <string>
#include <vector>

namespace torquil {

// True for a program folder of an installed system layout: a folder named "bin" with a "share"
// folder beside it (/usr/bin, /usr/local/bin, /opt/torquil/bin, ~/.local/bin). Such a folder is
// never the work folder, even where it is writable (/usr/bin is, for root).
[[nodiscard]] bool isInstalledProgramFolder(const std::filesystem::path& folder);

// The executable's folder when it is writable and not an installed layout (a portable copy or a
// build folder), else the per-user application data folder (created when missing).
[[nodiscard]] std::filesystem::path defaultWorkDir(const std::filesystem::path& executable);
[[nodiscard]] bool isWritableDirectory(const std::filesystem::path& dir);

// The Read Me: the first of readme.txt in the work folder, beside the program, and where an
// install puts documentation (../share/doc/torquil beside the program's folder, for any prefix)
// that exists; the one beside the program when none does.
[[nodiscard]] std::filesystem::path findReadme(const std::filesystem::path& workDir,
                                               const std::filesystem::path& programDir);

// Debug mode: "-d" anywhere in the command line (a plain substring test, so "x -dz" counts).
[[nodiscard]] bool commandLineHasDebugSwitch(const std::vector<std::string>& arguments);

// Finds a file by name in a folder ignoring case (the game's files are named in any case).
// Returns the exact name when it exists, else a case-insensitive match, else folder/name.
[[nodiscard]] std::filesystem::path findFileNoCase(const std::filesystem::path& folder,
                                                   const std::string& name);

// Deletes every file whose name begins with "~" in the folder (the program's temporary files).
[[nodiscard]] int deleteTemporaryFiles(const std::filesystem::path& folder);

} // namespace torquil
