#pragma once
// torquil-cli: the core without windows. Every command is registered on one CLI11 app.

#include "cli/run.h"
#include "platform/console_platform.h"
#include "session/edits.h"
#include "session/load_sequence.h"
#include "session/session_io.h"

#include <CLI/CLI.hpp>

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
    std::string dumps;         // comma list: carinfo,spriteinfo,clut,delta
    void addTo(CLI::App& cmd); // adds -d, --answer, --workdir (and --dump when wanted)
    void addDumpOption(CLI::App& cmd);
};

// A file named on the command line (UTF-8 text) as a path, in every script.
std::filesystem::path argumentPath(const std::string& utf8);

// Builds the session options (debug mode, work directory, dump flags) from the common options;
// throws CLI::ValidationError for an unknown dump kind.
AppOptions makeAppOptions(const Context& ctx, const CommonOptions& common);
// A console platform set up with the --answer given.
std::unique_ptr<ConsolePlatform> makePlatform(const Context& ctx, const CommonOptions& common);

// Loads a style for a command with output of its own: details lines are not echoed, message
// boxes still go to standard error. Returns nullptr (and sets ctx.exitCode) when the load failed.
std::unique_ptr<StyleSession> loadStyle(Context& ctx, ConsolePlatform& platform,
                                        const AppOptions& options, const std::string& style,
                                        int loadOption);

// Each command file provides one of these; cli_app.cpp calls them all.
void registerOpenCommand(CLI::App& app, Context& ctx);
void registerSpriteCommand(CLI::App& app, Context& ctx);
void registerSaveTestCommand(CLI::App& app, Context& ctx);
void registerCarCommand(CLI::App& app, Context& ctx);
void registerCarsCommand(CLI::App& app, Context& ctx);
void registerCarSetCommand(CLI::App& app, Context& ctx);
void registerFxtCommands(CLI::App& app, Context& ctx);
void registerExportSpriteCommand(CLI::App& app, Context& ctx);
void registerImportSpriteCommand(CLI::App& app, Context& ctx);
void registerTransparencyCommand(CLI::App& app, Context& ctx);
void registerGc3Command(CLI::App& app, Context& ctx);
void registerSoundCommand(CLI::App& app, Context& ctx);
void registerDeltaCommands(CLI::App& app, Context& ctx);

} // namespace torquil::cli
