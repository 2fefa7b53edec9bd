#include "cli/cli.h"

#include "base/file_lock.h"
#include "base/runtime_error.h"
#include "base/utf8_path.h"
#include "base/version.h"
#include "base/work_dir.h"
#include "session/loaders.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <sstream>
#include <string_view>

namespace torquil::cli {

void CommonOptions::addTo(Command& cmd) {
    cmd.addFlag("-d,--debug", debug, "Debug mode: a run-time error stops the command");
    cmd.addOption("--answer", answer,
                  "Answer to every question (default: the answer that changes nothing)")
        ->oneOf({"yes", "no", "cancel", "ok"});
    cmd.addOption("--workdir", workdir,
                  "The program's directory (temporary files, dump files, exported BMPs)")
        ->path();
}

void CommonOptions::addDumpOption(Command& cmd) {
    cmd.addOption("--dump", dumps,
                  "Comma list of dump files to write: carinfo, spriteinfo, clut, delta");
}

void CommonOptions::addBreakLinksOption(Command& cmd) {
    cmd.addFlag("--break-links", breakLinks,
                "Save a file that has other hard links (they keep the old file)");
}

std::filesystem::path argumentPath(const std::string& utf8) {
    return pathFromUtf8(utf8);
}

AppOptions makeAppOptions(const Context& ctx, const CommonOptions& common) {
    AppOptions options;
    options.debugMode = common.debug;
    // The command line never splits a file from its other hard links unless told.
    options.links = common.breakLinks ? LinkPolicy::Break : LinkPolicy::Refuse;
    // No command shows pages or takes an edit back.
    options.showPages = false;
    options.keepUndo = false;
    options.workDir = common.workdir.empty()
                          ? defaultWorkDir(ctx.executable)
                          : std::filesystem::absolute(argumentPath(common.workdir));
    std::error_code ec;
    std::filesystem::create_directories(options.workDir, ec);
    std::stringstream list(common.dumps);
    std::string kind;
    while (std::getline(list, kind, ',')) {
        if (kind == "carinfo")
            options.dumps.carInfo = true;
        else if (kind == "spriteinfo")
            options.dumps.spriteInfo = true;
        else if (kind == "clut")
            options.dumps.clut = true;
        else if (kind == "delta")
            options.dumps.delta = true;
        else if (!kind.empty())
            throw UsageError("--dump", "unknown dump kind: " + kind);
    }
    return options;
}

std::unique_ptr<ConsolePlatform> makePlatform(const Context& ctx, const CommonOptions& common) {
    auto platform = std::make_unique<ConsolePlatform>(ctx.out, ctx.err);
    platform->setAnswer(parseAnswer(common.answer));
    return platform;
}

std::unique_ptr<StyleSession> loadStyle(Context& ctx, ConsolePlatform& platform,
                                        const AppOptions& options, const std::string& style,
                                        int loadOption) {
    platform.setDetailsEcho(false);
    auto session = std::make_unique<StyleSession>(options);
    prepareStyle(session->style, std::filesystem::absolute(argumentPath(style)), loadOption);
    if (!initHeader(*session, platform, standardLoaders())) {
        ctx.exitCode = kExitFailed;
        return nullptr;
    }
    return session;
}

bool refuseOutput(Context& ctx, const std::string& command, const std::filesystem::path& output,
                  const std::vector<GuardedFile>& guarded) {
    const Result<void> allowed = checkOutput(output, guarded);
    if (allowed) return false;
    ctx.err << command << ": " << allowed.message() << '\n';
    ctx.exitCode = kExitFailed;
    return true;
}

namespace {

// The commands each register function adds, in the order of the help.
struct CommandGroup {
    std::array<std::string_view, 3> names;
    void (*add)(Command& app, Context& ctx);
};
constexpr CommandGroup kCommandGroups[] = {
    {{"open"}, registerOpenCommand},
    {{"sprite"}, registerSpriteCommand},
    {{"save-test"}, registerSaveTestCommand},
    {{"car"}, registerCarCommand},
    {{"cars"}, registerCarsCommand},
    {{"car-set"}, registerCarSetCommand},
    {{"fxt2txt", "txt2fxt"}, registerFxtCommands},
    {{"export-sprite"}, registerExportSpriteCommand},
    {{"import-sprite"}, registerImportSpriteCommand},
    {{"transparency-fix"}, registerTransparencyCommand},
    {{"gc3"}, registerGc3Command},
    {{"sound", "sound-import"}, registerSoundCommand},
    {{"deltas", "export-deltas", "import-deltas"}, registerDeltaCommands},
};

} // namespace

int run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    std::vector<const char*> argv;
    for (const auto& a : args) argv.push_back(a.c_str());
    return run(static_cast<int>(argv.size()), argv.data(), out, err);
}

int run(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
    Context ctx{out, err, argc > 0 ? pathFromUtf8(argv[0]) : std::filesystem::path{}};
    setLockProgramName("torquil-cli");
    CommandLine commandLine("torquil-cli: the Torquil style file editor for scripts",
                            std::string("torquil-cli ") + kVersion);
    Command& app = commandLine.root();
    app.requireSubcommand();
    // A line that names a command sets up that command alone (each brings dozens of options);
    // anything else (help, a misspelt name) sees them all, in the order of the help.
    const std::string_view named = argc > 1 ? std::string_view(argv[1]) : std::string_view();
    const auto own = std::find_if(
        std::begin(kCommandGroups), std::end(kCommandGroups), [named](const CommandGroup& group) {
            return !named.empty() &&
                   std::find(group.names.begin(), group.names.end(), named) != group.names.end();
        });
    if (own != std::end(kCommandGroups))
        own->add(app, ctx);
    else
        for (const CommandGroup& group : kCommandGroups) group.add(app, ctx);
    try {
        int status = kExitOk;
        if (!commandLine.parseAndRun(argc, argv, out, err, kExitUsage, status)) return status;
    } catch (const RuntimeError& e) {
        // Debug mode: the error stopped the command; it is reported here, at the top.
        err << "message: " << e.what() << '\n';
        return kExitFailed;
    }
    return ctx.exitCode;
}

} // namespace torquil::cli
