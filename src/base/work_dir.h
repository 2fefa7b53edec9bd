#pragma once
// "The program's directory": where temporary files, dump files and exported BMPs go.

#include <filesystem>
#include <string>
#include <vector>

namespace torquil {

// The executable's folder when it is writable (a portable install), else the per-user
// application data folder (created when missing).
std::filesystem::path defaultWorkDir(const std::filesystem::path& executable);
bool isWritableDirectory(const std::filesystem::path& dir);

// Debug mode: "-d" anywhere in the command line (a plain substring test, so "x -dz" counts).
bool commandLineHasDebugSwitch(const std::vector<std::string>& arguments);

// Finds a file by name in a folder ignoring case (the game's files are named in any case).
// Returns the exact name when it exists, else a case-insensitive match, else folder/name.
std::filesystem::path findFileNoCase(const std::filesystem::path& folder, const std::string& name);

// Deletes every file whose name begins with "~" in the folder (the program's temporary files).
int deleteTemporaryFiles(const std::filesystem::path& folder);

} // namespace torquil
