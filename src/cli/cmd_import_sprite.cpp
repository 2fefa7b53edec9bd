// torquil-cli import-sprite: an edited BMP back into the sprite, then saved into the style file.

#include "cli/cli.h"

#include "base/utf8_path.h"
#include "cli/sprite_pick.h"

#include "exchange/sprite_exchange.h"
#include "session/save_sequence.h"

#include <ostream>

namespace torquil::cli {

void registerImportSpriteCommand(Command& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        bool tiles = false;
        bool resize = false, dropDeltas = false;
        std::string style, bmp;
        int asn = 0;
    };
    auto args = std::make_shared<Args>();
    Command* cmd = app.addSubcommand(
        "import-sprite",
        "Read BMP into the sprite (or with --tiles the tile) with absolute number ASN, with the\n"
        "editor's checks and palette questions, and save the style file.\n"
        "A palette that differs from the sprite's CLUT is only written over it when --answer\n"
        "says ok (or yes); the default answer cancels the import.\n"
        "A picture of another size is refused unless --resize is given: the sprite then takes\n"
        "the picture's size and a place on the pages (its own when it fits, else free space, else\n"
        "a new page; 26 pages at most). Deltas that no longer fit are named, and removed only\n"
        "with --drop-deltas. The car record's collision size is left as it is.\n"
        "Standard error: the messages and answers (\"message: \", \"answer: \").\n"
        "Standard output: \"imported: \" and the BMP's path, \"clut changed\" when the colours\n"
        "were overwritten, \"resized: \" with the new size and place after a resize, or\n"
        "\"nothing changed\" when the style file already held the picture (nothing is written).\n"
        "Exit status: 0 imported and saved, 1 refused, cancelled or failed, 2 usage error.");
    args->common.addTo(*cmd);
    args->common.addBreakLinksOption(*cmd);
    cmd->addFlag("--tiles", args->tiles, "Open the tile pages and import into a tile");
    cmd->addFlag("--resize", args->resize, "Give the sprite the picture's size");
    cmd->addFlag("--drop-deltas", args->dropDeltas,
                 "With --resize: remove the deltas that do not fit the new size");
    cmd->addOption("STYLE", args->style, "The style file (.G24 or .GRY)")->path()->required();
    cmd->addOption("ASN", args->asn, "Absolute sprite number (tile number with --tiles)")
        ->required();
    cmd->addOption("BMP", args->bmp, "The 8-bit BMP to import")->path()->required();
    cmd->action([args, &ctx] {
        AppOptions options = makeAppOptions(ctx, args->common);
        options.keepStyleContent = true; // it saves: the load keeps the bytes
        auto platform = makePlatform(ctx, args->common);
        auto session = loadStyle(ctx, *platform, options, args->style,
                                 args->tiles ? kLoadTiles : kLoadSprites);
        if (!session || !pickSprite(ctx, *session, *platform, args->asn, "import-sprite")) return;
        const auto bmp = std::filesystem::absolute(argumentPath(args->bmp));
        const SpriteRec before = *session->selectedSprite();
        if (!importSpriteResizing(*session, *platform, bmp, {args->resize, args->dropDeltas})) {
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
        if (saved.nothingChanged) ctx.out << kNothingChanged << '\n';
        if (clutChanged) ctx.out << "clut changed\n";
        if (const SpriteRec* now = session->selectedSprite();
            now && (now->W != before.W || now->H != before.H)) {
            ctx.out << "resized: " << int{now->W} << " x " << int{now->H} << " on page "
                    << now->page << " at (" << int{now->xo} << "," << int{now->yo} << ")";
            if (now->delta_count != before.delta_count)
                ctx.out << ", deltas " << int{before.delta_count} << " -> "
                        << int{now->delta_count};
            ctx.out << '\n';
        }
        ctx.exitCode = kExitOk;
    });
}

} // namespace torquil::cli
