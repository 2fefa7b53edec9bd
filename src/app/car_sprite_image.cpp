#include "app/car_sprite_image.h"

#include "session/session_io.h"

#include <QPainter>

#include <algorithm>

namespace torquil {

const SpriteRec* findSpriteByAsn(const StyleSession& session, int asn) {
    if (asn <= 0) return nullptr;
    for (const auto& page : session.sprites.pageSprites)
        for (std::size_t sib = 1; sib < page.size(); ++sib)
            if (page[sib].kind.empty() && page[sib].ASN == asn) return &page[sib];
    return nullptr;
}

QImage spriteImage(const StyleSession& session, const SpriteRec& sprite,
                   const ClutColours& colours) {
    const int w = std::max<int>(sprite.W, 1), h = std::max<int>(sprite.H, 1);
    QImage image(w, h, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    if (sprite.page < 0 || sprite.page >= kMaxPages) return image;
    // Rows and columns that lie on the page; a rectangle past the edge keeps the rest empty.
    const int cols = std::min<int>(sprite.W, kPageSize - sprite.xo);
    const int rows = std::min<int>(sprite.H, kPageSize - sprite.yo);
    for (int y = 0; y < rows; ++y) {
        const std::uint8_t* bytes = session.pages.row(sprite.page, sprite.yo + y) + sprite.xo;
        auto* out = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < cols; ++x)
            out[x] = bytes[x] == 0 ? 0u : 0xFF000000u | colours[bytes[x]];
    }
    return image;
}

QRect enlargedRect(QSize size, const QRect& area, int maxScale) {
    if (size.isEmpty()) return {};
    const int fit = std::min(area.width() / size.width(), area.height() / size.height());
    const int scale = std::clamp(fit, 1, std::max(maxScale, 1));
    const QSize scaled = size * scale;
    return {area.x() + (area.width() - scaled.width()) / 2,
            area.y() + (area.height() - scaled.height()) / 2, scaled.width(), scaled.height()};
}

void paintChecker(QPainter& painter, const QRect& area) {
    constexpr int kCell = 8;
    painter.save();
    painter.setClipRect(area);
    painter.fillRect(area, QColor(0xCC, 0xCC, 0xCC));
    for (int y = area.top(); y <= area.bottom(); y += kCell)
        for (int x = area.left() + ((y - area.top()) / kCell % 2) * kCell; x <= area.right();
             x += 2 * kCell)
            painter.fillRect(x, y, kCell, kCell, QColor(0xEE, 0xEE, 0xEE));
    painter.restore();
}

} // namespace torquil
