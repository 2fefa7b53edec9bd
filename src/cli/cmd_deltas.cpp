// torquil-cli deltas, export-deltas, import-deltas: a sprite's delta set listed, written as one
// picture and read back (then saved).

#include "base/utf8_path.h"
#include "cli/cli.h"
#include "cli/sprite_pick.h"

#include "session/delta_sets.h"
#include "session/edits.h"
#include "session/save_sequence.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace torquil::cli {

namespace {

nlohmann::ordered_json listingJson(int asn, const SpriteRec& sprite,
                                   const std::vector<DeltaListing>& lines) {
    nlohmann::ordered_json j;
    j["asn"] = asn;
    j["width"] = sprite.W;
    j["height"] = sprite.H;
    j["count"] = lines.size();
    j["deltas"] = nlohmann::ordered_json::array();
    for (std::size_t k = 0; k < lines.size(); ++k) {
        const DeltaListing& d = lines[k];
        nlohmann::ordered_json e;
        e["delta"] = k;
        e["table_index"] = d.tableIndex;
        e["size"] = d.size;
        e["ptr"] = d.ptr;
        e["runs"] = d.extent.runs;
        e["pixels"] = d.extent.pixels;
        if (d.extent.empty)
            e["box"] = nullptr;
        else
            e["box"] = {{"left", d.extent.left},
                        {"top", d.extent.top},
                        {"right", d.extent.right},
                        {"bottom", d.extent.bottom}};
        e["outside"] = d.extent.outside;
        j["deltas"].push_back(std::move(e));
    }
    return j;
}

void printListing(std::ostream& out, int asn, const SpriteRec& sprite,
                  const std::vector<DeltaListing>& lines) {
    out << "sprite " << asn << " (" << int{sprite.W} << "x" << int{sprite.H}
        << "): " << lines.size() << " deltas\n";
    for (std::size_t k = 0; k < lines.size(); ++k) {
        const DeltaListing& d = lines[k];
        out << "delta " << k << ": table " << d.tableIndex << ", size " << d.size << ", ptr "
            << d.ptr << ", runs " << d.extent.runs << ", box ";
        if (d.extent.empty)
            out << "none";
        else
            out << "(" << d.extent.left << "," << d.extent.top << ")-(" << d.extent.right << ","
                << d.extent.bottom << ")";
        if (d.extent.outside) out << ", " << d.extent.outside << " pixels outside the sprite";
        out << '\n';
    }
}

struct DeltaArgs {
    CommonOptions common;
    std::string style, file, output;
    int asn = 0;
    bool json = false, clean = false;
    bool resize = false, dropDeltas = false;
};

Command* addStyleAndAsn(Command& cmd, DeltaArgs& args) {
    args.common.addTo(cmd);
    cmd.addOption("STYLE", args.style, "The style file (.G24 or .GRY)")->path()->required();
    cmd.addOption("ASN", args.asn, "Absolute sprite number of the sprite (a car)")->required();
    return &cmd;
}

} // namespace

void registerDeltaCommands(Command& app, Context& ctx) {
    auto list = std::make_shared<DeltaArgs>();
    Command* deltas = app.addSubcommand(
        "deltas",
        "List the deltas of the sprite with absolute number ASN: their count and, per delta, its\n"
        "index in the delta table, size, pointer, run count and the bounding box of its pixels\n"
        "(runs drawn as the game draws them).\n"
        "Exit status: 0 listed, 1 not found or load failed, 2 usage error.");
    addStyleAndAsn(*deltas, *list);
    deltas->addFlag("--json", list->json, "One JSON object instead of text lines");
    deltas->action([list, &ctx] {
        AppOptions options = makeAppOptions(ctx, list->common);
        auto platform = makePlatform(ctx, list->common);
        auto session = loadStyle(ctx, *platform, options, list->style, kLoadSprites);
        if (!session || !pickSprite(ctx, *session, *platform, list->asn, "deltas")) return;
        const SpriteRec& sprite = *session->selectedSprite();
        const auto lines = listDeltas(*session, sprite);
        if (list->json)
            ctx.out << listingJson(list->asn, sprite, lines).dump(2) << '\n';
        else
            printListing(ctx.out, list->asn, sprite, lines);
        ctx.exitCode = kExitOk;
    });

    auto exp = std::make_shared<DeltaArgs>();
    Command* exportCmd = app.addSubcommand(
        "export-deltas",
        "Write the delta set of the sprite with absolute number ASN as one picture, frame i at\n"
        "x = i * width: dirty (each delta over the sprite) or with --clean (each delta on colour\n"
        "0). An 8-bit BMP, or an 8-bit palette PNG when FILE ends in .png.\n"
        "Standard output: the full path of the picture written.\n"
        "Exit status: 0 written, 1 no deltas, not found, load or write failed, 2 usage error.");
    addStyleAndAsn(*exportCmd, *exp);
    exportCmd->addFlag("--clean", exp->clean, "Each delta alone on colour 0");
    exportCmd->addOption("-o,--output", exp->output, "The picture to write (.bmp or .png)")
        ->path()
        ->required();
    exportCmd->action([exp, &ctx] {
        AppOptions options = makeAppOptions(ctx, exp->common);
        auto platform = makePlatform(ctx, exp->common);
        auto session = loadStyle(ctx, *platform, options, exp->style, kLoadSprites);
        if (!session || !pickSprite(ctx, *session, *platform, exp->asn, "export-deltas")) return;
        const auto target = std::filesystem::absolute(argumentPath(exp->output));
        if (refuseOutput(ctx, "export-deltas", target, levelFiles(session->style.path))) return;
        if (!exportDeltaSet(*session, *platform, target, exp->clean)) {
            ctx.err << "export-deltas: the picture was not written\n";
            ctx.exitCode = kExitFailed;
            return;
        }
        ctx.out << utf8Of(target) << '\n';
        ctx.exitCode = kExitOk;
    });

    auto imp = std::make_shared<DeltaArgs>();
    Command* importCmd = app.addSubcommand(
        "import-deltas",
        "Read a delta set picture (BMP, or PNG by the name; dirty, or with --clean clean) into "
        "the\n"
        "deltas of the sprite with absolute number ASN and save the style file (a .bak copy is\n"
        "kept). Frames that show their delta unchanged keep their runs exactly; in a changed\n"
        "frame only the pixels that differ from the export are added, changed or removed (a\n"
        "clean set's colour-0 delta pixels look like the background and are kept).\n"
        "A palette that differs from the sprite's CLUT is only written over it when --answer\n"
        "says ok (or yes); the default answer cancels the import.\n"
        "A picture with another number of frames (its width is the sprite's width times the\n"
        "frames) is refused unless --resize is given: the sprite's delta count then becomes the\n"
        "number of frames (at most 255); new deltas are added at the end, removed ones taken from\n"
        "the end, and removing a delta that a door of the car shows needs --drop-deltas.\n"
        "Standard output: \"imported: \" and the picture's path, then \"changed deltas: \" and\n"
        "their number, and with --resize \"deltas: \" with the sprite's delta count; or\n"
        "\"nothing changed\" when the style file already held the set (nothing is written).\n"
        "Exit status: 0 imported and saved, 1 refused, cancelled or failed, 2 usage error.");
    addStyleAndAsn(*importCmd, *imp);
    imp->common.addBreakLinksOption(*importCmd);
    importCmd->addOption("FILE", imp->file, "The delta set picture (.bmp or .png)")
        ->path()
        ->required();
    importCmd->addFlag("--clean", imp->clean, "The picture is a clean set (deltas on colour 0)");
    importCmd->addFlag("--resize", imp->resize, "Let the picture's frames set the delta count");
    importCmd->addFlag("--drop-deltas", imp->dropDeltas,
                       "With --resize: allow removing deltas that a door shows");
    importCmd->action([imp, &ctx] {
        AppOptions options = makeAppOptions(ctx, imp->common);
        options.keepStyleContent = true; // it saves: the load keeps the bytes
        auto platform = makePlatform(ctx, imp->common);
        auto session = loadStyle(ctx, *platform, options, imp->style, kLoadSprites);
        if (!session || !pickSprite(ctx, *session, *platform, imp->asn, "import-deltas")) return;
        const auto file = std::filesystem::absolute(imp->file);
        const DeltaSetImport result = importDeltaSetResizing(*session, *platform, file, imp->clean,
                                                             {imp->resize, imp->dropDeltas});
        if (!result) {
            ctx.exitCode = kExitFailed;
            return;
        }
        const SaveOutcome saved = saveChanges(*session, *platform);
        if (saved.result != SaveResult::Saved) {
            ctx.exitCode = kExitFailed;
            return;
        }
        ctx.out << "imported: " << file.string() << '\n';
        if (saved.nothingChanged) {
            ctx.out << kNothingChanged << '\n';
        } else {
            ctx.out << "changed deltas: " << *result << '\n';
            if (const SpriteRec* sprite = session->selectedSprite(); sprite && imp->resize)
                ctx.out << "deltas: " << int{sprite->delta_count} << '\n';
        }
        ctx.exitCode = kExitOk;
    });
}

} // namespace torquil::cli
