#include "session/loaders.h"

#include "session/style_session.h"

namespace torquil {

std::unique_ptr<PagePainter> makePagePainter(const StyleSession& session) {
    return std::make_unique<BackgroundPainter>(session.style.gIs24Bit ? kDarkGrey : kBlack);
}

} // namespace torquil
