#include "session/loaders.h"

#include "session/session_io.h"
#include "session/style_session.h"

namespace torquil {

namespace {

// For a session whose pages are never shown: the page image is left as it is (all zero).
class UnshownPagesPainter : public PagePainter {
public:
    void paintRow(int, int, const std::uint8_t*, std::uint32_t*) const override {}
};

} // namespace

std::unique_ptr<PagePainter> makePagePainter(const StyleSession& session) {
    if (!session.options.showPages) return std::make_unique<UnshownPagesPainter>();
    return makeSpritePagePainter(session);
}

} // namespace torquil
