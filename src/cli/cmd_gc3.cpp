// torquil-cli gc3: car packs. write builds one from a changed and an unchanged style file and
// text file, read prints a pack's header, apply turns the unchanged files into the changed ones.

#include "cli/cli.h"

#include "exchange/gc3.h"

#include <ostream>

namespace torquil::cli {

namespace {

void printHeader(std::ostream& out, const Gc3Header& h) {
    for (const std::string& line : gc3HeaderLines(h)) out << line << '\n';
}

} // namespace

void registerGc3Command(CLI::App& app, Context& ctx) {
    CLI::App* gc3 = app.add_subcommand("gc3", "GC3 car packs: write, read, apply.");
    gc3->require_subcommand(1);

    struct WriteArgs {
        CommonOptions common;
        std::string modStyle, origStyle, modFxt, origFxt, pack;
    };
    auto w = std::make_shared<WriteArgs>();
    CLI::App* write = gc3->add_subcommand(
        "write",
        "Write PACK with the byte runs in which MOD_STYLE and MOD_FXT differ from ORIG_STYLE\n"
        "and ORIG_FXT. Both style files must be of the same level (STYLEnnn in the name).\n"
        "Exit status: 0 written, 1 refused or failed, 2 usage error.");
    w->common.addTo(*write);
    write->add_option("MOD_STYLE", w->modStyle, "The changed style file")->required();
    write->add_option("ORIG_STYLE", w->origStyle, "The style file as it was")->required();
    write->add_option("MOD_FXT", w->modFxt, "The changed ENGLISH.FXT")->required();
    write->add_option("ORIG_FXT", w->origFxt, "ENGLISH.FXT as it was")->required();
    write->add_option("PACK", w->pack, "The pack to write (replaced)")->required();
    write->callback([w, &ctx] {
        auto platform = makePlatform(ctx, w->common);
        ctx.exitCode =
            writeGC3(w->modStyle, w->origStyle, w->modFxt, w->origFxt, w->pack, *platform)
                ? kExitOk
                : kExitFailed;
    });

    struct ReadArgs {
        CommonOptions common;
        std::string pack;
    };
    auto r = std::make_shared<ReadArgs>();
    CLI::App* read =
        gc3->add_subcommand("read", "Print the header of PACK as \"field:value\" lines.\n"
                                    "Exit status: 0 read, 1 missing or too short, 2 usage error.");
    r->common.addTo(*read);
    read->add_option("PACK", r->pack, "The pack")->required();
    read->callback([r, &ctx] {
        auto platform = makePlatform(ctx, r->common);
        Gc3Header header;
        if (!readGC3(r->pack, header, *platform)) {
            ctx.exitCode = kExitFailed;
            return;
        }
        printHeader(ctx.out, header);
        ctx.exitCode = kExitOk;
    });

    struct ApplyArgs {
        CommonOptions common;
        std::string pack, style, fxt;
    };
    auto a = std::make_shared<ApplyArgs>();
    CLI::App* apply = gc3->add_subcommand(
        "apply",
        "Apply PACK to STYLE and FXT (the files the pack was made against), so that they become\n"
        "the changed files. Nothing is written when the pack is for another level, damaged, or\n"
        "does not fit the files. Standard output: the number of runs applied to each file.\n"
        "Exit status: 0 applied, 1 refused or failed, 2 usage error.");
    a->common.addTo(*apply);
    apply->add_option("PACK", a->pack, "The pack")->required();
    apply->add_option("STYLE", a->style, "The style file to change")->required();
    apply->add_option("FXT", a->fxt, "The ENGLISH.FXT to change")->required();
    apply->callback([a, &ctx] {
        auto platform = makePlatform(ctx, a->common);
        ctx.exitCode = applyGC3(a->pack, a->style, a->fxt, *platform) ? kExitOk : kExitFailed;
    });
}

} // namespace torquil::cli
