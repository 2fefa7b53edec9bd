#include "app/board_geometry.h"

namespace torquil {

std::optional<PagePoint> BoardGeometry::hit(QPoint content, int pages) const {
    const int y = content.y() - kRuler;
    const int fromFirst = content.x() - kGap;
    if (y < 0 || fromFirst < 0) return std::nullopt;
    const int page = fromFirst / pageSpan();
    const int x = fromFirst % pageSpan();
    if (page >= pages || x >= 256 * zoom || y >= 256 * zoom) return std::nullopt;
    return PagePoint{page, x / zoom, y / zoom};
}

} // namespace torquil
