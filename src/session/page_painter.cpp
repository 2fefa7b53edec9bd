#include "session/loaders.h"

#include "session/session_io.h"
#include "session/style_session.h"

namespace torquil {

std::unique_ptr<PagePainter> makePagePainter(const StyleSession& session) {
    return makeSpritePagePainter(session);
}

} // namespace torquil
