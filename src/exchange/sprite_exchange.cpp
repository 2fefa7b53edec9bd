#include "exchange/sprite_exchange.h"

#include "exchange/bmp.h"
#include "platform/platform.h"
#include "session/loaders.h"
#include "session/picture_file.h"
#include "session/style_session.h"
#include "style/page_io.h"

namespace torquil {

namespace {

// The sprite's rectangle clipped to its page; empty for a page outside the 26.
struct PageRect {
    int page = -1, x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    bool empty() const { return page < 0 || x0 >= x1 || y0 >= y1; }
};

PageRect clippedRect(const SpriteRec& s) {
    PageRect r;
    if (s.page < 0 || s.page >= kMaxPages) return r;
    r.page = s.page;
    r.x0 = s.xo;
    r.y0 = s.yo;
    r.x1 = std::min(s.xo + s.W, kPageSize);
    r.y1 = std::min(s.yo + s.H, kPageSize);
    return r;
}

} // namespace

std::vector<std::uint8_t> spritePixels(const StyleSession& session, const SpriteRec& sprite) {
    const int w = sprite.W, h = sprite.H;
    std::vector<std::uint8_t> out(static_cast<std::size_t>(w) * h, 0);
    const PageRect r = clippedRect(sprite);
    if (r.empty()) return out;
    for (int y = r.y0; y < r.y1; ++y) {
        const std::uint8_t* src = session.pages.row(r.page, y);
        std::copy(src + r.x0, src + r.x1,
                  out.begin() + static_cast<std::ptrdiff_t>(y - sprite.yo) * w);
    }
    return out;
}

std::filesystem::path exportSprite(StyleSession& session, Platform& platform) {
    const SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return {};
    const std::filesystem::path file = session.workPath(bmpFileName(session, *sprite));
    return exportSpriteTo(session, platform, file) ? file : std::filesystem::path{};
}

bool exportSpriteTo(StyleSession& session, Platform& platform, const std::filesystem::path& file) {
    const SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return false;
    platform.progress().open("Exporting", file.filename().string(), std::max(0, sprite->H - 1));
    const bool written = writePicture(session, platform, file, spritePixels(session, *sprite),
                                      sprite->clut, sprite->W, sprite->H);
    platform.progress().close();
    return written;
}

bool importSprite(StyleSession& session, Platform& platform) {
    const SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return false;
    return importSpriteFrom(session, platform, session.workPath(bmpFileName(session, *sprite)));
}

bool importSpriteFrom(StyleSession& session, Platform& platform,
                      const std::filesystem::path& file) {
    SpriteRec* sprite = session.selectedSprite();
    if (!sprite) return false;
    ProgressSink& progress = platform.progress();
    progress.open("Importing", file.filename().string(), std::max(0, sprite->H - 1));
    std::vector<std::uint8_t> pixels;
    if (!readPicture(session, platform, file, sprite->clut, sprite->W, sprite->H, pixels)) {
        progress.close();
        return false;
    }

    // Into the page, then straight into the page image so the board shows the new sprite
    // without repainting every page.
    const PageRect r = clippedRect(*sprite);
    if (!r.empty()) {
        for (int y = r.y0; y < r.y1; ++y) {
            const auto src =
                pixels.begin() + static_cast<std::ptrdiff_t>(y - sprite->yo) * sprite->W;
            std::copy(src, src + (r.x1 - r.x0), session.pages.row(r.page, y) + r.x0);
            progress.setValue(y - r.y0);
        }
        const auto painter = makePagePainter(session);
        repaintRect(session, *painter, r.page, r.x0, r.y0, r.x1 - r.x0, r.y1 - r.y0);
    }
    session.style.gPagesChanged = true;
    platform.desktop().refreshBoard();
    progress.close();
    return true;
}

} // namespace torquil
