#pragma once
// A command's output is never one of the level's own files nor one of the command's inputs: one
// wrong argument must not turn a style file into a picture or a pack.

#include "base/result.h"

#include <filesystem>
#include <string>
#include <vector>

namespace torquil {

struct GuardedFile {
    std::filesystem::path path;
    std::string role; // what the file is, for the refusal: "the level's style file"
};

// The files of the level whose style file is `style`: the style file, ENGLISH.FXT and the sound
// bank (SDT and RAW) beside it, each with its ".bak". Files that do not exist yet are listed too:
// a later save would take an output of that name for its backup.
[[nodiscard]] std::vector<GuardedFile> levelFiles(const std::filesystem::path& style);

// Success when `output` is none of `guarded`; else the refusal as the message, naming the output
// and what it is. Names are compared after following links and ".." and, for the file name,
// without regard to case (the game's files are found that way).
[[nodiscard]] Result<void> checkOutput(const std::filesystem::path& output,
                                       const std::vector<GuardedFile>& guarded);

} // namespace torquil
