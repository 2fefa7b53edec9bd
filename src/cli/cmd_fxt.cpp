// torquil-cli fxt2txt / txt2fxt: the game's coded text file to a plain text file and back.

#include "cli/cli.h"

#include "base/atomic_file.h"
#include "base/file_transaction.h"
#include "base/utf8_path.h"
#include "cars/fxt.h"
#include "session/file_backups.h"

#include <ostream>

namespace torquil::cli {

void registerFxtCommands(Command& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        std::string from, to;
        bool breakLinks = false;
    };
    auto decode = std::make_shared<Args>();
    Command* fxt2txtCmd = app.addSubcommand(
        "fxt2txt",
        "Decode a coded text file (ENGLISH.FXT) into a text file: the first eight bytes, then\n"
        "one entry per line ended by CR LF. Exit status: 0 written, 1 failed, 2 usage error.");
    decode->common.addTo(*fxt2txtCmd);
    fxt2txtCmd->addOption("FXT", decode->from, "The coded text file")->path()->required();
    fxt2txtCmd->addOption("TXT", decode->to, "The text file to write")->path()->required();
    fxt2txtCmd->action([decode, &ctx] {
        const auto from = argumentPath(decode->from);
        if (refuseOutput(ctx, "fxt2txt", argumentPath(decode->to),
                         {{from, "the coded text file being read (FXT)"},
                          {backupPathOf(from), "the backup of the coded text file"}}))
            return;
        auto platform = makePlatform(ctx, decode->common);
        CarNames names;
        ctx.exitCode =
            fxt2txt(argumentPath(decode->from), argumentPath(decode->to), &names, *platform)
                ? kExitOk
                : kExitFailed;
    });

    auto encode = std::make_shared<Args>();
    Command* txt2fxtCmd = app.addSubcommand(
        "txt2fxt",
        "Encode a text file (one entry per line) into a coded text file, replacing it; the file\n"
        "ends with the end marker the editor writes. The coded file it replaces is kept once as\n"
        "FXT.bak (an existing .bak is never overwritten). The coded file is locked while it is\n"
        "replaced and is replaced only if no other run replaced it since this one began (else\n"
        "nothing is written and the reason is given); a save of it that was cut short is\n"
        "finished or rolled back first. A file with other hard links is refused unless\n"
        "--break-links. Exit status: 0 written, 1 failed (nothing written), 2 usage.");
    encode->common.addTo(*txt2fxtCmd);
    txt2fxtCmd->addOption("TXT", encode->from, "The text file")->path()->required();
    txt2fxtCmd->addOption("FXT", encode->to, "The coded text file to write")->path()->required();
    txt2fxtCmd->addFlag("--break-links", encode->breakLinks,
                        "Replace a coded file that has other hard links (they keep the old one)");
    txt2fxtCmd->action([encode, &ctx] {
        const auto to = argumentPath(encode->to);
        if (refuseOutput(ctx, "txt2fxt", to,
                         {{argumentPath(encode->from), "the text file being read (TXT)"},
                          {backupPathOf(to), "the backup this command keeps of FXT"}}))
            return;
        auto platform = makePlatform(ctx, encode->common);
        // The coded file replaced is kept as its ".bak" before anything is written over it.
        CommitOptions commit;
        commit.breakLinks = encode->breakLinks;
        commit.keepBackup = [](const std::filesystem::path& file) {
            return processBackups().ensureBackup(file);
        };
        ctx.exitCode =
            txt2fxt(argumentPath(encode->from), argumentPath(encode->to), *platform, commit)
                ? kExitOk
                : kExitFailed;
    });
}

} // namespace torquil::cli
