#pragma once
// torquil-cli: the core without windows. Every command registers itself on one command line.

#include "cli/command.h"
#include "cli/run.h"
#include "platform/console_platform.h"
#include "session/edits.h"
#include "session/load_sequence.h"
#include "session/output_guard.h"
#include "session/session_io.h"

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace torquil::cli {

// Shared by all commands: where output goes and the options every command knows.
struct Context {
    std::ostream& out;
    std::ostream& err;
    std::filesystem::path executable;
    int exitCode = kExitOk;
};

// What a command that saves prints when the save found every file already as it would write it.
inline constexpr const char* kNothingChanged = "nothing changed";

// Options most commands take.
struct CommonOptions {
    bool debug = false;
    std::string answer; // yes|no|cancel|ok
    std::string workdir;
    std::string dumps;        // comma list: carinfo,spriteinfo,clut,delta
    void addTo(Command& cmd); // adds -d, --answer, --workdir (and --dump when wanted)
    void addDumpOption(Command& cmd);
    bool breakLinks = false;
    void addBreakLinksOption(Command& cmd); // for the commands that save the style file
};

// A file named on the command line (UTF-8 text) as a path, in every script.
[[nodiscard]] std::filesystem::path argumentPath(const std::string& utf8);

// Builds the session options (debug mode, work directory, dump flags) from the common options;
// throws UsageError for an unknown dump kind.
[[nodiscard]] AppOptions makeAppOptions(const Context& ctx, const CommonOptions& common);
// A console platform set up with the --answer given.
[[nodiscard]] std::unique_ptr<ConsolePlatform> makePlatform(const Context& ctx,
                                                            const CommonOptions& common);

// Loads a style for a command with output of its own: details lines are not echoed, message
// boxes still go to standard error. Returns nullptr (and sets ctx.exitCode) when the load failed.
[[nodiscard]] std::unique_ptr<StyleSession> loadStyle(Context& ctx, ConsolePlatform& platform,
                                                      const AppOptions& options,
                                                      const std::string& style, int loadOption);

// Refuses an output that is one of `guarded` (the level's files, the command's inputs): prints
// "command: why" to standard error, sets the failed exit status and returns true.
[[nodiscard]] bool refuseOutput(Context& ctx, const std::string& command,
                                const std::filesystem::path& output,
                                const std::vector<GuardedFile>& guarded);

// Each command file provides one of these; cli_app.cpp calls them all.
void registerOpenCommand(Command& app, Context& ctx);
void registerSpriteCommand(Command& app, Context& ctx);
void registerSaveTestCommand(Command& app, Context& ctx);
void registerCarCommand(Command& app, Context& ctx);
void registerCarsCommand(Command& app, Context& ctx);
void registerCarSetCommand(Command& app, Context& ctx);
void registerFxtCommands(Command& app, Context& ctx);
void registerExportSpriteCommand(Command& app, Context& ctx);
void registerImportSpriteCommand(Command& app, Context& ctx);
void registerTransparencyCommand(Command& app, Context& ctx);
void registerGc3Command(Command& app, Context& ctx);
void registerSoundCommand(Command& app, Context& ctx);
void registerDeltaCommands(Command& app, Context& ctx);

} // namespace torquil::cli
