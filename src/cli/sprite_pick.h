#pragma once
// Selecting a sprite by its absolute number for the commands that work on "the selected sprite".

#include "cli/cli.h"

#include "sprites/sprite_info.h"

#include <ostream>
#include <string>

namespace torquil::cli {

// Selects sprite `asn` as the board would. The search's own messages ("ASN:n not found.", "not
// loaded") go to standard error; false sets the failed exit status.
[[nodiscard]] inline bool pickSprite(Context& ctx, StyleSession& session, Platform& platform,
                                     int asn, const std::string& command) {
    if (asn > 0 && searchNSelect(session, platform, asn) == SearchResult::Selected &&
        session.selectedSprite())
        return true;
    if (asn <= 0) ctx.err << command << ": no sprite has the number " << asn << '\n';
    ctx.exitCode = kExitFailed;
    return false;
}

} // namespace torquil::cli
