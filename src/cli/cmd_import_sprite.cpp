// torquil-cli import-sprite: an edited BMP back into the sprite, then saved into the style file.

#include "cli/cli.h"

#include "base/utf8_path.h"
#include "cli/sprite_pick.h"

#include "exchange/sprite_exchange.h"
#include "session/save_sequence.h"

#include <ostream>

namespace torquil::cli {

void registerImportSpriteCommand(CLI::App& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        bool tiles = false;
        std::string style, bmp;
        int asn = 0;
    };
    auto args = std::make_shared<Args>();
    CLI::App* cmd = app.add_subcommand(
        "import-sprite",
        "Read BMP into the sprite (or with --tiles the tile) with absolute number ASN, with the\n"
        "editor's checks and palette questions, and save the style file.\n"
        "A palette that differs from the sprite's CLUT is only written over it when --answer\n"
        "says ok (or yes); the default answer cancels the import.\n"
        "Standard error: the messages and answers (\"message: \", \"answer: \").\n"
        "Standard output: \"imported: \" and the BMP's path, \"clut changed\" when the colours\n"
        "were overwritten, or \"nothing changed\" when the style file already held the picture\n"
        "(nothing is written).\n"
        "Exit status: 0 imported and saved, 1 refused, cancelled or failed, 2 usage error.");
    args->common.addTo(*cmd);
    cmd->add_flag("--tiles", args->tiles, "Open the tile pages and import into a tile");
    cmd->add_option("STYLE", args->style, "The style file (.G24 or .GRY)")->required();
    cmd->add_option("ASN", args->asn, "Absolute sprite number (tile number with --tiles)")
        ->required();
    cmd->add_option("BMP", args->bmp, "The 8-bit BMP to import")->required();
    cmd->callback([args, &ctx] {
        AppOptions options = makeAppOptions(ctx, args->common);
        options.keepStyleContent = true; // read once for the load and the save
        auto platform = makePlatform(ctx, args->common);
        auto session = loadStyle(ctx, *platform, options, args->style,
                                 args->tiles ? kLoadTiles : kLoadSprites);
        if (!session || !pickSprite(ctx, *session, *platform, args->asn, "import-sprite")) return;
        const auto bmp = std::filesystem::absolute(argumentPath(args->bmp));
        if (!importSpriteFrom(*session, *platform, bmp)) {
            ctx.exitCode = kExitFailed;
            return;
        }
        const bool clutChanged = session->style.gClutChanged;
        const SaveOutcome saved = saveChanges(*session, *platform);
        if (saved.result != SaveResult::Saved) {
            ctx.exitCode = kExitFailed;
            return;
        }
        ctx.out << "imported: " << utf8Of(bmp) << '\n';
        if (saved.nothingChanged)
            ctx.out << kNothingChanged << '\n';
        else if (clutChanged)
            ctx.out << "clut changed\n";
        ctx.exitCode = kExitOk;
    });
}

} // namespace torquil::cli
