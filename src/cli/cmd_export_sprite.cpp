// torquil-cli export-sprite: the sprite (or tile) as an 8-bit BMP, as "Export Sprite" does.

#include "cli/cli.h"

#include "base/utf8_path.h"
#include "cli/sprite_pick.h"

#include "exchange/sprite_exchange.h"

#include <ostream>

namespace torquil::cli {

void registerExportSpriteCommand(Command& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        bool tiles = false;
        std::string style, output;
        int asn = 0;
    };
    auto args = std::make_shared<Args>();
    Command* cmd = app.addSubcommand(
        "export-sprite",
        "Write the sprite (or with --tiles the tile) with absolute number ASN as an 8-bit BMP\n"
        "with its colours, named as the editor names it (KRBSPR/CAR/KRBTIL + level + _ + number)\n"
        "in the work directory, or to FILE with -o.\n"
        "Standard output: the full path of the BMP written.\n"
        "Exit status: 0 written, 1 not found, load or write failed, 2 usage error.");
    args->common.addTo(*cmd);
    cmd->addFlag("--tiles", args->tiles, "Open the tile pages and export a tile");
    cmd->addOption("-o,--output", args->output, "Write the BMP here instead")->path();
    cmd->addOption("STYLE", args->style, "The style file (.G24 or .GRY)")->path()->required();
    cmd->addOption("ASN", args->asn, "Absolute sprite number (tile number with --tiles)")
        ->required();
    cmd->action([args, &ctx] {
        AppOptions options = makeAppOptions(ctx, args->common);
        auto platform = makePlatform(ctx, args->common);
        auto session = loadStyle(ctx, *platform, options, args->style,
                                 args->tiles ? kLoadTiles : kLoadSprites);
        if (!session || !pickSprite(ctx, *session, *platform, args->asn, "export-sprite")) return;
        std::filesystem::path written;
        if (args->output.empty()) {
            written = exportSprite(*session, *platform);
        } else {
            const auto target = std::filesystem::absolute(argumentPath(args->output));
            if (refuseOutput(ctx, "export-sprite", target, levelFiles(session->style.path))) return;
            if (exportSpriteTo(*session, *platform, target)) written = target;
        }
        if (written.empty()) {
            ctx.err << "export-sprite: the BMP could not be written ("
                    << errorDescription(session->errors.pending()) << ")\n";
            ctx.exitCode = kExitFailed;
            return;
        }
        ctx.out << utf8Of(written) << '\n';
        ctx.exitCode = kExitOk;
    });
}

} // namespace torquil::cli
