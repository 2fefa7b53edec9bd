// Fuzzes the delta set import. The input gives a sprite (size, up to 4 deltas with their runs)
// and a delta set: either raw pixels written as a proper picture, or raw bytes taken as the
// picture file itself. Any input must end in an import or a message; an import must leave every
// delta drawing exactly its frame, a refusal must leave every run line as it was.

#include "exchange/delta_frames.h"
#include "fake_platform.h"
#include "fuzz_support.h"
#include "session/edits.h"
#include "session/picture_file.h"
#include "session/session_io.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr int kPage = 2;

struct Reader {
    const std::uint8_t* data;
    std::size_t size, pos = 0;
    std::uint8_t next() { return pos < size ? data[pos++] : 0; }
    bool more() const { return pos < size; }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torquil;
    if (size < 5) return 0;
    Reader in{data, size};
    const std::uint8_t flags = in.next();
    const bool clean = flags & 1, asFile = flags & 2, png = flags & 4;
    const int w = 1 + in.next() % 40, h = 1 + in.next() % 40;
    const int count = 1 + in.next() % 4;

    StyleSession& session = fuzz::reusedSession();
    session.style.gIs24Bit = flags & 8;
    session.style.gMapNumber = 1;
    session.colours.gClutsAvail = 4;
    session.colours.pal24.assign(5 * 256, {1, 2, 3});
    session.colours.used.assign(5, 1);
    SpriteRec sprite;
    sprite.W = static_cast<std::uint8_t>(w);
    sprite.H = static_cast<std::uint8_t>(h);
    sprite.xo = 10;
    sprite.yo = 20;
    sprite.page = kPage;
    sprite.ASN = 1;
    sprite.delta_count = static_cast<std::uint8_t>(count);
    session.deltas.myDeltas.assign(static_cast<std::size_t>(count), DeltaRec{});
    session.deltas.deltaCount = count;
    for (int k = 0; k < count; ++k) {
        sprite.deltas.push_back(static_cast<std::int16_t>(k));
        DeltaRec& d = session.deltas.myDeltas[static_cast<std::size_t>(k)];
        const int runs = in.next() % 4;
        for (int r = 0; r < runs; ++r) {
            RunLine run;
            run.offset = static_cast<std::uint16_t>(in.next() | (in.next() << 8));
            run.length = in.next() % 8;
            for (int i = 0; i < run.length; ++i) run.data.push_back(in.next());
            d.runLine.push_back(std::move(run));
        }
        if (d.runLine.empty()) d.runLine.emplace_back();
    }
    session.sprites.pageSprites[kPage] = {SpriteRec{}, sprite};
    session.selection.page = kPage;
    session.selection.sib = 1;
    for (int y = 0; y < kPageSize; ++y)
        std::fill_n(session.pages.row(kPage, y), kPageSize, static_cast<std::uint8_t>(y % 3));

    testing::FakePlatform platform;
    platform.scriptedAnswers = {Answer::Ok, Answer::No};
    const auto file = fuzz::scratchDir() / (png ? "set.png" : "set.bmp");
    const int width = w * count;
    if (asFile) {
        fuzz::writeScratch(file.filename().string(), data + in.pos, size - in.pos);
    } else {
        std::vector<std::uint8_t> picture(static_cast<std::size_t>(width) * h, 0);
        for (auto& p : picture) p = in.more() ? in.next() % 3 : 0;
        if (!writePicture(session, platform, file, picture, 0, width, h)) return 0;
    }

    const DeltaTable before = session.deltas;
    std::vector<std::uint8_t> pixels;
    const bool readable = readPicture(session, platform, file, 0, width, h, pixels);
    const DeltaSetImport result = importDeltaSet(session, platform, file, clean);
    if (!result) {
        for (int k = 0; k < count; ++k) {
            const auto& a = before.myDeltas[static_cast<std::size_t>(k)].runLine;
            const auto& b = session.deltas.myDeltas[static_cast<std::size_t>(k)].runLine;
            if (a.size() != b.size()) __builtin_trap();
            for (std::size_t i = 0; i < a.size(); ++i)
                if (a[i].offset != b[i].offset || a[i].data != b[i].data) __builtin_trap();
        }
        return 0;
    }
    if (!readable) __builtin_trap();
    // Every delta now draws its frame over the base.
    std::vector<std::uint8_t> base(static_cast<std::size_t>(w) * h, 0);
    if (!clean)
        for (int y = 0; y < h; ++y)
            std::fill_n(base.begin() + static_cast<std::ptrdiff_t>(y) * w, w,
                        static_cast<std::uint8_t>((20 + y) % 3));
    for (int k = 0; k < count; ++k) {
        std::vector<std::uint8_t> drawn = base;
        drawDelta(session.deltas.myDeltas[static_cast<std::size_t>(k)], w, h, drawn);
        if (drawn != deltaSetFrame(pixels, w, h, k)) __builtin_trap();
    }
    return 0;
}
