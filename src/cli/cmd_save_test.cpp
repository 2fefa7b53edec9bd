// torquil-cli save-test: load a style, mark every part changed and save it through the editor's
// save sequence. A full save of an unchanged file must give back the same bytes.

#include "cli/cli.h"

#include "session/save_sequence.h"

#include <ostream>

namespace torquil::cli {

void registerSaveTestCommand(Command& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        std::string style;
        bool breakLinks = false;
    };
    auto args = std::make_shared<Args>();
    Command* cmd = app.addSubcommand(
        "save-test",
        "Load a style file, mark pages, CLUTs (.G24 only), deltas, every car and the car names\n"
        "as changed, and save them with the editor's Save Changes.\n"
        "Standard output: \"step: \" and each save step in order, then \"saved\", \"declined\"\n"
        "or \"failed: \" and the step that failed.\n"
        "Standard error: each message box line prefixed \"message: \".\n"
        "A file with other hard links is refused unless --break-links.\n"
        "Exit status: 0 saved, 1 load or save failed (nothing written), 2 usage error.");
    args->common.addTo(*cmd);
    cmd->addOption("STYLE", args->style, "The style file (.G24 or .GRY)")->path()->required();
    cmd->addFlag("--break-links", args->breakLinks,
                 "Save a file that has other hard links (they keep the old file)");
    cmd->action([args, &ctx] {
        AppOptions options = makeAppOptions(ctx, args->common);
        options.keepStyleContent = true; // it saves: the load keeps the bytes
        options.links = args->breakLinks ? LinkPolicy::Break : LinkPolicy::Refuse;
        auto platform = makePlatform(ctx, args->common);
        auto session = loadStyle(ctx, *platform, options, args->style, kLoadSprites);
        if (!session) return;
        markAllChanged(*session);
        // Everything is written even where it comes out as it was: this command tests the writing.
        SaveOptions save;
        save.writeUnchanged = true;
        const SaveOutcome outcome = saveChanges(*session, *platform, save);
        for (const std::string& step : outcome.steps) ctx.out << "step: " << step << '\n';
        switch (outcome.result) {
        case SaveResult::Saved:
            ctx.out << "saved\n";
            ctx.exitCode = kExitOk;
            break;
        case SaveResult::Declined:
            ctx.out << "declined\n";
            ctx.exitCode = kExitFailed;
            break;
        case SaveResult::Failed:
            ctx.out << "failed: " << outcome.failedStep << '\n';
            ctx.exitCode = kExitFailed;
            break;
        }
    });
}

} // namespace torquil::cli
