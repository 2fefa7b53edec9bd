// torquil-cli gc3: car packs. write builds one from a changed and an unchanged style file and
// text file, read prints a pack's header, show tells what a pack changes, apply turns the
// unchanged files into the changed ones.

#include "cli/cli.h"

#include "base/binary_file.h"
#include "cars/fxt.h"
#include "exchange/gc3.h"
#include "session/car_pack.h"
#include "session/car_pack_preview.h"
#include "session/file_backups.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>

namespace torquil::cli {

namespace {

void printHeader(std::ostream& out, const Gc3Header& h) {
    for (const std::string& line : gc3HeaderLines(h)) out << line << '\n';
}

nlohmann::ordered_json previewJson(const CarPackPreview& p) {
    using Json = nlohmann::ordered_json;
    Json j;
    j["level"] = p.packLevel;
    j["style_level"] = p.openLevel;
    j["for_this_level"] = p.forOpenLevel();
    j["style"] = {{"runs", p.styleRuns},
                  {"bytes_changed", p.styleBytesChanged},
                  {"bytes_moved", p.styleBytesMoved},
                  {"length_before", p.styleLengthBefore},
                  {"length_after", p.styleLengthAfter}};
    j["fxt"] = {{"runs", p.fxtRuns},
                {"bytes_changed", p.fxtBytesChanged},
                {"bytes_moved", p.fxtBytesMoved},
                {"length_before", p.fxtLengthBefore},
                {"length_after", p.fxtLengthAfter}};
    j["car_records"] = Json::array();
    for (const auto& c : p.cars)
        j["car_records"].push_back({{"asn", c.asn},
                                    {"model", c.model},
                                    {"name", c.name},
                                    {"fields", c.fields},
                                    {"changes", c.changes}});
    j["car_names"] = Json::array();
    for (const auto& n : p.names)
        j["car_names"].push_back({{"model", n.model}, {"before", n.before}, {"after", n.after}});
    j["other_texts"] = p.otherTexts;
    j["sprites"] = Json::array();
    for (const auto& s : p.sprites)
        j["sprites"].push_back(
            {{"page", s.page}, {"asn", s.asn}, {"car", s.car}, {"pixels", s.pixels}});
    j["cluts"] = Json::array();
    for (const auto& c : p.cluts) j["cluts"].push_back({{"clut", c.clut}, {"sprites", c.asns}});
    j["delta_store"] = p.deltaStore;
    j["other_sections"] = p.otherSections;
    j["moved_sections"] = Json::array();
    for (const auto& m : p.movedSections)
        j["moved_sections"].push_back({{"section", m.section}, {"bytes", m.bytes}});
    return j;
}

} // namespace

void registerGc3Command(Command& app, Context& ctx) {
    Command* gc3 = app.addSubcommand("gc3", "GC3 car packs: write, read, apply.");
    gc3->requireSubcommand();

    struct WriteArgs {
        CommonOptions common;
        std::string modStyle, origStyle, modFxt, origFxt, pack;
    };
    auto w = std::make_shared<WriteArgs>();
    Command* write = gc3->addSubcommand(
        "write",
        "Write PACK with the byte runs in which MOD_STYLE and MOD_FXT differ from ORIG_STYLE\n"
        "and ORIG_FXT. Both style files must be of the same level (STYLEnnn in the name).\n"
        "The pack is read back before it is written: applied to the originals it must give\n"
        "the changed files, and they must open in the editor. An existing PACK is replaced\n"
        "only when the new one is complete.\n"
        "Exit status: 0 written, 1 refused or failed, 2 usage error.");
    w->common.addTo(*write);
    write->addOption("MOD_STYLE", w->modStyle, "The changed style file")->path()->required();
    write->addOption("ORIG_STYLE", w->origStyle, "The style file as it was")->path()->required();
    write->addOption("MOD_FXT", w->modFxt, "The changed ENGLISH.FXT")->path()->required();
    write->addOption("ORIG_FXT", w->origFxt, "ENGLISH.FXT as it was")->path()->required();
    write->addOption("PACK", w->pack, "The pack to write (replaced)")->path()->required();
    write->action([w, &ctx] {
        // The pack must not land on one of its four inputs or on a file of either level.
        std::vector<GuardedFile> guarded = levelFiles(argumentPath(w->modStyle));
        const auto originals = levelFiles(argumentPath(w->origStyle));
        guarded.insert(guarded.end(), originals.begin(), originals.end());
        guarded.push_back({argumentPath(w->modFxt), "the changed ENGLISH.FXT (MOD_FXT)"});
        guarded.push_back({argumentPath(w->origFxt), "the unmodified ENGLISH.FXT (ORIG_FXT)"});
        if (refuseOutput(ctx, "gc3 write", argumentPath(w->pack), guarded)) return;
        auto platform = makePlatform(ctx, w->common);
        ctx.exitCode = writeCarPack(argumentPath(w->modStyle), argumentPath(w->origStyle),
                                    argumentPath(w->modFxt), argumentPath(w->origFxt),
                                    argumentPath(w->pack), *platform)
                           ? kExitOk
                           : kExitFailed;
    });

    struct ReadArgs {
        CommonOptions common;
        std::string pack;
    };
    auto r = std::make_shared<ReadArgs>();
    Command* read =
        gc3->addSubcommand("read", "Print the header of PACK as \"field:value\" lines.\n"
                                   "Exit status: 0 read, 1 missing or too short, 2 usage error.");
    r->common.addTo(*read);
    read->addOption("PACK", r->pack, "The pack")->path()->required();
    read->action([r, &ctx] {
        auto platform = makePlatform(ctx, r->common);
        Gc3Header header;
        if (!readGC3(argumentPath(r->pack), header, *platform)) {
            ctx.exitCode = kExitFailed;
            return;
        }
        printHeader(ctx.out, header);
        ctx.exitCode = kExitOk;
    });

    struct ShowArgs {
        CommonOptions common;
        std::string pack, style, fxt;
        bool json = false;
    };
    auto sh = std::make_shared<ShowArgs>();
    Command* show = gc3->addSubcommand(
        "show",
        "Tell what PACK changes in STYLE and FXT (the files it would be applied to): the car\n"
        "records and their fields, the car names, the sprites whose pixels change (page and\n"
        "ASN), the CLUTs, the delta store and other sections, and the level it is for. A pack\n"
        "that apply would refuse is refused the same way, each conflict named.\n"
        "Exit status: 0 shown, 1 the pack is damaged or does not fit the files, 2 usage error.");
    sh->common.addTo(*show);
    show->addOption("PACK", sh->pack, "The pack")->path()->required();
    show->addOption("STYLE", sh->style, "The style file it would change")->path()->required();
    show->addOption("FXT", sh->fxt, "The ENGLISH.FXT it would change")->path()->required();
    show->addFlag("--json", sh->json, "Print the preview as a JSON object");
    show->action([sh, &ctx] {
        AppOptions options = makeAppOptions(ctx, sh->common);
        auto platform = makePlatform(ctx, sh->common);
        CarPackFile pack;
        if (!readCarPack(argumentPath(sh->pack), pack, *platform)) {
            ctx.exitCode = kExitFailed;
            return;
        }
        auto session = loadStyle(ctx, *platform, options, sh->style, kLoadSprites);
        if (!session) return;
        const Result<CarPackPlan, CarPackFailure> planned =
            planCarPack(pack, {argumentPath(sh->style), argumentPath(sh->fxt)});
        if (!planned) {
            platform->message(planned.message());
            ctx.exitCode = kExitFailed;
            return;
        }
        const CarPackPlan& plan = *planned;
        // The names of the FXT given, wherever it lies; the decoded text itself is not needed.
        static_cast<void>(decodeFxtBytes(plan.fxtBefore, &session->names));
        const CarPackPreview preview =
            previewCarPack(plan.packAsPlaced(pack.pack), *session, plan.styleBefore, plan.fxtBefore,
                           plan.styleAfter, plan.fxtAfter);
        if (sh->json)
            ctx.out << previewJson(preview).dump(2, ' ', false,
                                                 nlohmann::ordered_json::error_handler_t::replace)
                    << '\n';
        else
            for (const std::string& line : carPackPreviewLines(preview)) ctx.out << line << '\n';
        ctx.exitCode = kExitOk;
    });

    struct ApplyArgs {
        CommonOptions common;
        std::string pack, style, fxt;
    };
    auto a = std::make_shared<ApplyArgs>();
    Command* apply = gc3->addSubcommand(
        "apply",
        "Apply PACK to STYLE and FXT. Files that are the ones the pack was made against become\n"
        "the changed files exactly; files edited since take the pack's changes when every byte\n"
        "it changes is still as it was (packs written here), else each conflict is named (car\n"
        "and field, sprite, CLUT, car name) and nothing is written. Nothing is written either\n"
        "when the pack is for another level, damaged, already applied, or would give files the\n"
        "editor cannot open. Each changed file is first kept once as its .bak; a file the pack\n"
        "does not change is not written; a file with other hard links is refused unless\n"
        "--break-links. Standard output: the files written and their .bak.\n"
        "Exit status: 0 applied, 1 refused or failed, 2 usage error.");
    a->common.addTo(*apply);
    a->common.addBreakLinksOption(*apply);
    apply->addOption("PACK", a->pack, "The pack")->path()->required();
    apply->addOption("STYLE", a->style, "The style file to change")->path()->required();
    apply->addOption("FXT", a->fxt, "The ENGLISH.FXT to change")->path()->required();
    apply->action([a, &ctx] {
        auto platform = makePlatform(ctx, a->common);
        const CarPackApplied applied =
            applyCarPack(argumentPath(a->pack), {argumentPath(a->style), argumentPath(a->fxt)},
                         *platform, processBackups(), makeAppOptions(ctx, a->common).links);
        if (applied) {
            std::string text = *applied;
            std::replace(text.begin(), text.end(), '\r', '\n');
            ctx.out << text << '\n';
        }
        ctx.exitCode = applied ? kExitOk : kExitFailed;
    });
}

} // namespace torquil::cli
