// Fuzzes the BMP reader through a sprite import: any input must end in an imported sprite or a
// message, never a crash, an out-of-bounds access or pixels outside the sprite's rectangle.

#include "exchange/bmp.h"
#include "exchange/sprite_exchange.h"
#include "fake_platform.h"
#include "fuzz_support.h"
#include "session/edits.h"
#include "session/session_io.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr int kPage = 3;

// One session for the whole run (building one per input would dominate the time); each input
// starts from blank pages around the sprite.
torquil::StyleSession& sharedSession() {
    static torquil::StyleSession session = [] {
        torquil::AppOptions options;
        options.workDir = torquil::fuzz::scratchDir();
        return torquil::StyleSession(options);
    }();
    return session;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torquil;
    if (size < 4) return 0;
    // Byte 0: kind of style and the answers; bytes 1, 2: the sprite's size; the rest is the BMP.
    StyleSession& session = sharedSession();
    session.errors.clear();
    session.style.gIs24Bit = data[0] & 1;
    session.style.gMapNumber = 1;
    session.style.gPagesChanged = session.style.gClutChanged = false;
    session.colours.gClutsAvail = 64;
    session.colours.pal24.assign(65 * 256, {1, 2, 3});
    session.colours.used.assign(65, 1);
    SpriteRec sprite;
    sprite.W = data[1];
    sprite.H = data[2];
    sprite.xo = 200;
    sprite.yo = 100;
    sprite.page = kPage;
    sprite.ASN = 1;
    sprite.clut = static_cast<std::int16_t>(data[0] >> 4);
    sprite.delta_count = data[0] & 4 ? 1 : 0;
    session.sprites.pageSprites[kPage] = {SpriteRec{}, sprite};
    session.selection.page = kPage;
    session.selection.sib = 1;
    for (int p = kPage - 1; p <= kPage + 1; ++p)
        std::fill_n(session.pages.row(p, 0), kPageBytes, std::uint8_t{0});

    testing::FakePlatform platform;
    platform.scriptedAnswers = {data[0] & 2 ? Answer::Ok : Answer::Cancel, Answer::Yes};
    const auto file = fuzz::writeScratch("KRBSPR1_1.bmp", data + 3, size - 3);
    if (data[0] & 8) {
        std::vector<std::uint8_t> pixels;
        static_cast<void>(readBmp(session, platform, file, sprite.clut, 0, 0, pixels));
        return 0;
    }
    const bool imported = importSprite(session, platform);
    // Only the sprite's rectangle, clipped to its page, may change, and only on success.
    for (int p = kPage - 1; p <= kPage + 1; ++p) {
        for (int y = 0; y < kPageSize; ++y) {
            const std::uint8_t* row = session.pages.row(p, y);
            for (int x = 0; x < kPageSize; ++x) {
                const bool inside = imported && p == kPage && x >= sprite.xo &&
                                    x < sprite.xo + sprite.W && y >= sprite.yo &&
                                    y < sprite.yo + sprite.H;
                if (row[x] != 0 && !inside) __builtin_trap();
            }
        }
    }
    return 0;
}
