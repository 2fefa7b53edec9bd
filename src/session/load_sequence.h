#pragma once
// Opening a style file: read the header, find the sections, run the loaders in the game's
// order, read and paint the pages, and set the caption.

#include "base/result.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace torquil {

class Platform;
class StyleSession;
struct LoaderSet;
struct StyleFileState;

// Why a load did not open the file.
enum class LoadProblem {
    FileMissing, // "file error or not found": nothing changed
    Failed       // a loader failed or a run-time error was pending: the load error message
};

// A load that did not open the file; its message is the one the user was shown.
struct LoadFailure : Failure {
    LoadProblem problem = LoadProblem::Failed;
};

// Success: the file is open, the caption set, the commands on.
using LoadOutcome = Result<void, LoadFailure>;

// What the open dialog sets before a load: full path, upper-cased name, level, kind, option.
void prepareStyle(StyleFileState& style, const std::filesystem::path& path, int loadOption);

// Runs the whole load sequence on a session prepared with prepareStyle(). In debug mode a
// run-time error escapes as RuntimeError.
[[nodiscard]] LoadOutcome initHeader(StyleSession& session, Platform& platform,
                                     const LoaderSet& loaders);

// The same load sequence on the bytes of a style file held in memory (`bytes` stands for the
// file at the prepared path; the loaders read nothing else of it but ENGLISH.FXT beside it,
// unless the loader set says otherwise). For checking a file before it is written.
[[nodiscard]] LoadOutcome initHeaderFromBytes(StyleSession& session, Platform& platform,
                                              const LoaderSet& loaders,
                                              std::vector<std::uint8_t>& bytes);

// The composite message of a failed load, lines joined with "\r".
[[nodiscard]] std::string loadFailureMessage(const std::string& step,
                                             const std::filesystem::path& path);
// The line added to the failure message when the file's header cannot belong to a style file.
[[nodiscard]] std::string notStyleFileLine(const std::filesystem::path& path);

} // namespace torquil
