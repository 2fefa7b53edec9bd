// torquil-cli sprite: one sprite's (or tile's) record, found by its absolute number.

#include "cli/cli.h"

#include "sprites/sprite_info.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace torquil::cli {

namespace {

std::string deltaList(const SpriteRec& rec) {
    std::string text;
    for (std::size_t d = 0; d < rec.deltas.size(); ++d)
        text += (d ? " " : "") + std::to_string(rec.deltas[d]);
    return text;
}

void printText(std::ostream& out, const StyleSession& s, const SpriteRec& rec, int page, int sib) {
    out << "ASN:" << rec.ASN << '\n';
    if (!rec.kind.empty()) out << "kind:" << rec.kind << '\n';
    out << "page:" << page << '\n' << "SIB:" << sib << '\n';
    out << "xo:" << int{rec.xo} << '\n' << "yo:" << int{rec.yo} << '\n';
    out << "W:" << int{rec.W} << '\n' << "H:" << int{rec.H} << '\n';
    if (rec.kind.empty()) out << "size:" << rec.size << '\n';
    if (s.style.gIs24Bit) {
        out << "clut:" << rec.clut << '\n';
        if (rec.kind.empty())
            out << "raw clut:" << rec.rawClut << '\n';
        else
            out << "palPos:" << rec.palPos << '\n';
    } else {
        out << "ptr:" << rec.gryPtr << '\n';
    }
    out << "delta_count:" << int{rec.delta_count} << '\n';
    out << "deltas:" << deltaList(rec) << '\n';
}

nlohmann::json toJson(const StyleSession& s, const SpriteRec& rec, int page, int sib) {
    nlohmann::json j;
    j["ASN"] = rec.ASN;
    j["page"] = page;
    j["SIB"] = sib;
    j["xo"] = rec.xo;
    j["yo"] = rec.yo;
    j["W"] = rec.W;
    j["H"] = rec.H;
    j["size"] = rec.size;
    if (!rec.kind.empty()) j["kind"] = rec.kind;
    if (s.style.gIs24Bit) {
        j["clut"] = rec.clut;
        j["rawClut"] = rec.rawClut;
    } else {
        j["ptr"] = rec.gryPtr;
    }
    j["delta_count"] = rec.delta_count;
    j["deltas"] = rec.deltas;
    return j;
}

} // namespace

void registerSpriteCommand(Command& app, Context& ctx) {
    struct Args {
        CommonOptions common;
        bool tiles = false;
        bool json = false;
        std::string style;
        int asn = 0;
    };
    auto args = std::make_shared<Args>();
    Command* cmd = app.addSubcommand(
        "sprite",
        "Print the record of the sprite (or with --tiles the tile) with absolute number ASN.\n"
        "Standard output: \"label:value\" lines (ASN, page, SIB, position, size, physical CLUT,\n"
        "delta count and delta reference numbers), or one JSON object with --json.\n"
        "Exit status: 0 found, 1 not found or load failed, 2 usage error.");
    args->common.addTo(*cmd);
    cmd->addFlag("--tiles", args->tiles, "Open the tile pages and look up a tile number");
    cmd->addFlag("--json", args->json, "Print the record as one JSON object");
    cmd->addOption("STYLE", args->style, "The style file (.G24 or .GRY)")->path()->required();
    cmd->addOption("ASN", args->asn, "Absolute sprite number (1-based)")->required();
    cmd->action([args, &ctx] {
        AppOptions options = makeAppOptions(ctx, args->common);
        auto platform = makePlatform(ctx, args->common);
        auto session = loadStyle(ctx, *platform, options, args->style,
                                 args->tiles ? kLoadTiles : kLoadSprites);
        if (!session) return;
        // Element 0 of a page list is no sprite: ASN 0 is never printed.
        const auto hit = args->asn > 0
                             ? findSprite(session->sprites, session->pages.highestPage, args->asn)
                             : std::nullopt;
        if (!hit) {
            ctx.err << "ASN:" << args->asn << " not found.\n";
            ctx.exitCode = kExitFailed;
            return;
        }
        const auto [page, sib] = *hit;
        const SpriteRec& rec =
            session->sprites
                .pageSprites[static_cast<std::size_t>(page)][static_cast<std::size_t>(sib)];
        if (args->json)
            ctx.out << toJson(*session, rec, page, sib).dump(2) << '\n';
        else
            printText(ctx.out, *session, rec, page, sib);
        ctx.exitCode = kExitOk;
    });
}

} // namespace torquil::cli
