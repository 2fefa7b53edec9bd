// torquil-cli car: one car's record, printed as the details window shows it.

#include "cli/cli.h"

#include "cars/car_info_io.h"

#include <ostream>

namespace torquil::cli {

void registerCarCommand(Command& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        std::string style;
        int asn = 0;
    };
    auto args = std::make_shared<Args>();
    Command* cmd = app.addSubcommand(
        "car", "Print the car info record of the car with absolute sprite number ASN.\n"
               "Standard output: the record dump of the details window, one field per line.\n"
               "Exit status: 0 printed, 1 no car there or load failed, 2 usage error.");
    args->common.addTo(*cmd);
    cmd->addOption("STYLE", args->style, "The style file (.G24 or .GRY)")->path()->required();
    cmd->addOption("ASN", args->asn, "Absolute sprite number of the car")->required();
    cmd->action([args, &ctx] {
        AppOptions options = makeAppOptions(ctx, args->common);
        auto platform = makePlatform(ctx, args->common);
        auto session = loadStyle(ctx, *platform, options, args->style, kLoadSprites);
        if (!session) return;
        if (!session->cars.find(args->asn)) {
            ctx.err << "car: no car record at absolute sprite number " << args->asn
                    << "; `torquil-cli cars " << args->style << "` lists the cars' numbers (asn)\n";
            ctx.exitCode = kExitFailed;
            return;
        }
        platform->setDetailsEcho(true);
        dumpCarInfo(*session, *platform, args->asn);
        ctx.exitCode = kExitOk;
    });
}

} // namespace torquil::cli
