// torquil-cli sound: one sound of the level's bank as the WAV the editor's play buttons play.

#include "cli/cli.h"

#include "base/utf8_path.h"

#include "session/sound_edits.h"
#include "sound/sound_preview.h"

#include <limits>
#include <ostream>

namespace torquil::cli {

namespace {

void registerSoundImportCommand(Command& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        std::string style, file;
        int number = 0;
    };
    auto args = std::make_shared<Args>();
    Command* cmd = app.addSubcommand(
        "sound-import",
        "Replace sound N of the level's bank (audio/LEVEL00n.SDT and .RAW beside STYLE) with the\n"
        "recording FILE (WAV, FLAC or Ogg, read by libsndfile): mixed to mono, converted to the\n"
        "bank's unsigned 8-bit samples, at the recording's own rate (the record keeps it). The\n"
        "samples are added at the end of the RAW file and the record points at them; every\n"
        "other sound stays where it was. Both files are kept once as .bak, then written\n"
        "together (both or neither). N runs from 1 to the bank's record count (0 is the table's\n"
        "empty record). Exit status: 0 replaced, 1 no bank, out of range or refused, 2 usage.");
    args->common.addTo(*cmd);
    cmd->addOption("STYLE", args->style, "The style file (its name gives the level)")
        ->path()
        ->required();
    cmd->addOption("N", args->number, "Sound number")->required();
    cmd->addOption("FILE", args->file, "The recording")->path()->required();
    cmd->action([args, &ctx] {
        const auto style = std::filesystem::absolute(argumentPath(args->style));
        if (!std::filesystem::is_regular_file(style))
            throw UsageError("STYLE", "File does not exist: " + args->style);
        auto platform = makePlatform(ctx, args->common);
        if (!soundFilesSupported()) {
            platform->message(soundFilesOffReason());
            ctx.exitCode = kExitFailed;
            return;
        }
        AppOptions options = makeAppOptions(ctx, args->common);
        StyleSession session(options);
        prepareStyle(session.style, style, kLoadSprites);
        const auto file = std::filesystem::absolute(argumentPath(args->file));
        const SoundResult outcome = importSound(session, *platform, args->number, file);
        if (!outcome && outcome.error().refusal == SoundRefusal::NoBank)
            ctx.err << "sound-import: no sound bank: " << utf8Of(sdtFilePath(session)) << " or "
                    << utf8Of(rawFilePath(session)) << " is missing\n";
        if (outcome) {
            const SoundReplacement& done = session.soundHistory.steps.back();
            ctx.out << "sound " << args->number << " replaced: " << done.after.length
                    << " samples at " << done.after.rate << " per second from " << utf8Of(file)
                    << "\n";
        }
        ctx.exitCode = outcome ? kExitOk : kExitFailed;
    });
}

} // namespace

void registerSoundCommand(Command& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        std::string style, output;
        int number = 0;
        double rate = 1.0;
        int repeat = 1;
        bool play = false;
        bool exact = false;
    };
    auto args = std::make_shared<Args>();
    Command* cmd = app.addSubcommand(
        "sound",
        "Cut sound N out of the level's bank (audio/LEVEL00n.SDT and .RAW beside STYLE) and\n"
        "write it as a WAV file (-o), play it (--play), or both. Numbers run from 0 to the\n"
        "bank's record count - 1; the bank's last record cannot be played. Limits: --repeat 1 to\n"
        "100, --rate 0.01 to 100, the WAV's rate 1 to 1000000 samples per second and its sound\n"
        "at most 64 MB; the record must lie inside the RAW file. Nothing is written otherwise.\n"
        "The play buttons' copy starts one byte before the record (so the bank's first record,\n"
        "at offset 0, cannot be played); --exact writes the record's own bytes, as the game\n"
        "reads them, the bank's last record included. The RAW file is read a piece at a time,\n"
        "whatever its size.\n"
        "Exit status: 0 done, 1 no bank, out of range or failed, 2 usage error.");
    args->common.addTo(*cmd);
    constexpr int kMax16 = std::numeric_limits<std::int16_t>::max();
    cmd->addOption("STYLE", args->style, "The style file (its name gives the level)")
        ->path()
        ->required();
    cmd->addOption("N", args->number, "Sound number")->required()->inRange(-kMax16 - 1, kMax16);
    cmd->addOption("--rate", args->rate, "Multiplier of the sample's rate, 0.01 to 100 (default 1)")
        ->inRange(kMinRateMultiplier, kMaxRateMultiplier);
    cmd->addOption("--repeat", args->repeat,
                   "How many times the sample plays, 1 to 100 (default 1)")
        ->inRange(1, kMaxRepeatCount);
    cmd->addOption("-o,--output", args->output, "Write the WAV here")->path();
    cmd->addFlag("--play", args->play, "Play it through the system's sound player");
    cmd->addFlag("--exact", args->exact,
                 "With -o: the record's own bytes as the game reads them, not the play "
                 "buttons' copy that starts one byte early");
    cmd->action([args, &ctx] {
        if (args->output.empty() && !args->play)
            throw UsageError("sound", "give -o WAV, --play, or both");
        // Checked here rather than by CLI11, whose test reads the name in the Windows code page.
        const auto style = std::filesystem::absolute(argumentPath(args->style));
        if (!std::filesystem::is_regular_file(style))
            throw UsageError("STYLE", "File does not exist: " + args->style);
        AppOptions options = makeAppOptions(ctx, args->common);
        auto platform = makePlatform(ctx, args->common);
        platform->setPlaybackEnabled(args->play);
        StyleSession session(options);
        prepareStyle(session.style, style, kLoadSprites);
        const auto number = static_cast<std::int16_t>(args->number);
        const auto repeat = static_cast<std::int16_t>(args->repeat);

        const auto output = std::filesystem::absolute(argumentPath(args->output));
        if (!args->output.empty() && refuseOutput(ctx, "sound", output, levelFiles(style))) return;
        SoundResult outcome;
        if (!args->output.empty())
            outcome = writeSoundWav(session, *platform, number, args->rate, repeat, output,
                                    args->exact ? SoundReading::AsStored : SoundReading::Preview);
        if (outcome && args->play)
            outcome = playSound(session, *platform, number, args->rate, repeat);
        if (outcome && args->play && !platform->playbackError().empty()) {
            ctx.err << "sound: could not play: " << platform->playbackError() << '\n';
            outcome = soundFailure(SoundRefusal::Failed, platform->playbackError());
        }
        if (!outcome && outcome.error().refusal == SoundRefusal::NoBank)
            ctx.err << "sound: no sound bank: " << utf8Of(sdtFilePath(session)) << " or "
                    << utf8Of(rawFilePath(session)) << " is missing\n";
        ctx.exitCode = outcome ? kExitOk : kExitFailed;
    });
    registerSoundImportCommand(app, ctx);
}

} // namespace torquil::cli
