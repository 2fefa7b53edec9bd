// torquil-cli open: the editor's load sequence, printing what the details window would show.

#include "cli/cli.h"

#include "session/loaders.h"

#include <ostream>

namespace torquil::cli {

void registerOpenCommand(Command& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        bool tiles = false;
        std::string style;
    };
    auto args = std::make_shared<Args>();
    Command* cmd = app.addSubcommand(
        "open", "Load a style file as the editor does.\n"
                "Standard output: every details-window line, in order.\n"
                "Standard error: each message box line prefixed \"message: \", \"answer: \" for "
                "questions,\n"
                "and \"caption: \" with the window caption after a successful load.\n"
                "Exit status: 0 loaded, 1 load failed, 2 usage error.");
    args->common.addTo(*cmd);
    args->common.addDumpOption(*cmd);
    cmd->addFlag("--tiles", args->tiles, "Open the tile pages instead of the sprites");
    cmd->addOption("STYLE", args->style, "The style file (.G24 or .GRY)")->path()->required();
    cmd->action([args, &ctx] {
        AppOptions options = makeAppOptions(ctx, args->common);
        auto platform = makePlatform(ctx, args->common);
        StyleSession session(options);
        prepareStyle(session.style, std::filesystem::absolute(argumentPath(args->style)),
                     args->tiles ? kLoadTiles : kLoadSprites);
        if (initHeader(session, *platform, standardLoaders())) {
            ctx.err << "caption: " << session.caption << '\n';
            ctx.exitCode = kExitOk;
        } else {
            ctx.exitCode = kExitFailed;
        }
    });
}

} // namespace torquil::cli
