// torquil-cli fxt2txt / txt2fxt: the game's coded text file to a plain text file and back.

#include "cli/cli.h"

#include "base/atomic_file.h"
#include "base/utf8_path.h"
#include "cars/fxt.h"
#include "session/file_backups.h"

#include <ostream>

namespace torquil::cli {

void registerFxtCommands(Command& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        std::string from, to;
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
        "FXT.bak (an existing .bak is never overwritten). Exit status: 0 written, 1 failed,\n"
        "2 usage.");
    encode->common.addTo(*txt2fxtCmd);
    txt2fxtCmd->addOption("TXT", encode->from, "The text file")->path()->required();
    txt2fxtCmd->addOption("FXT", encode->to, "The coded text file to write")->path()->required();
    txt2fxtCmd->action([encode, &ctx] {
        const auto to = argumentPath(encode->to);
        if (refuseOutput(ctx, "txt2fxt", to,
                         {{argumentPath(encode->from), "the text file being read (TXT)"},
                          {backupPathOf(to), "the backup this command keeps of FXT"}}))
            return;
        auto platform = makePlatform(ctx, encode->common);
        // The coded file replaced is kept as its ".bak" before anything is written over it.
        std::error_code ec;
        if (!processBackups().ensureBackup(argumentPath(encode->to), ec)) {
            platform->message(
                "FXT could not be copied to " + utf8Of(backupPathOf(argumentPath(encode->to))) +
                ", so nothing was written." + "\r" + "The system said: " + describeCause(ec) + ".");
            ctx.exitCode = kExitFailed;
            return;
        }
        ctx.exitCode = txt2fxt(argumentPath(encode->from), argumentPath(encode->to), *platform)
                           ? kExitOk
                           : kExitFailed;
    });
}

} // namespace torquil::cli
