// torquil-cli transparency-fix: move the sprite's background colour to index 0, then save.

#include "cli/cli.h"
#include "cli/sprite_pick.h"

#include "exchange/transparency.h"
#include "session/save_sequence.h"

#include <ostream>

namespace torquil::cli {

void registerTransparencyCommand(Command& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        std::string style;
        int asn = 0;
    };
    auto args = std::make_shared<Args>();
    Command* cmd = app.addSubcommand(
        "transparency-fix",
        "Find the background colour of the sprite with absolute number ASN from its corners and\n"
        "exchange it with index 0 in the sprite's pixels and CLUT, as \"Transparency > Fix\"\n"
        "does, then save the style file. The CLUT question is answered by --answer (ok or yes\n"
        "goes ahead; the default cancels).\n"
        "Standard output: corrected, already correct, undetermined, refused or cancelled.\n"
        "Exit status: 0 corrected and saved or already correct, 1 otherwise, 2 usage error.");
    args->common.addTo(*cmd);
    args->common.addBreakLinksOption(*cmd);
    cmd->addOption("STYLE", args->style, "The style file (.G24)")->path()->required();
    cmd->addOption("ASN", args->asn, "Absolute sprite number")->required();
    cmd->action([args, &ctx] {
        AppOptions options = makeAppOptions(ctx, args->common);
        options.keepStyleContent = true; // it saves: the load keeps the bytes
        auto platform = makePlatform(ctx, args->common);
        auto session = loadStyle(ctx, *platform, options, args->style, kLoadSprites);
        if (!session || !pickSprite(ctx, *session, *platform, args->asn, "transparency-fix"))
            return;
        const TransparencyResult fixed = transparencyCorrect(*session, *platform);
        if (fixed && *fixed == TransparencyDone::Corrected) {
            const SaveOutcome saved = saveChanges(*session, *platform);
            if (saved.result != SaveResult::Saved) {
                ctx.exitCode = kExitFailed;
                return;
            }
            if (saved.nothingChanged) ctx.out << kNothingChanged << '\n';
        }
        ctx.out << transparencyOutcomeWord(fixed) << '\n';
        ctx.exitCode = fixed ? kExitOk : kExitFailed;
    });
}

} // namespace torquil::cli
