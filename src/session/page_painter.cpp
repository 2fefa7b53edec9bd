#include "session/loaders.h"

#include "session/style_session.h"
#include "sprites/sprite_painter.h"

namespace torquil {

std::unique_ptr<PagePainter> makePagePainter(const StyleSession& session) {
    return makeSpritePagePainter(session);
}

} // namespace torquil
