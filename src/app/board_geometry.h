#pragma once
// Where the pages lie on the board: side by side, a small gap between them, a ruler with the
// page numbers above, every page drawn at the zoom factor.

#include <QPoint>
#include <QRect>

#include <optional>

namespace torquil {

struct PagePoint {
    int page = 0, x = 0, y = 0; // pixel of a page, 0..255
};

struct BoardGeometry {
    int zoom = 1;
    static constexpr int kGap = 12;   // between pages and at the edges
    static constexpr int kRuler = 22; // height of the page-number strip

    [[nodiscard]] int pageSpan() const { return 256 * zoom + kGap; }
    [[nodiscard]] int pageLeft(int page) const { return kGap + page * pageSpan(); }
    [[nodiscard]] int contentWidth(int pages) const { return kGap + pages * pageSpan(); }
    [[nodiscard]] int contentHeight() const { return kRuler + 256 * zoom + kGap; }
    // Rectangle of a page, or of a part of it, in content coordinates.
    [[nodiscard]] QRect pageRect(int page) const {
        return {pageLeft(page), kRuler, 256 * zoom, 256 * zoom};
    }
    [[nodiscard]] QRect pixelRect(int page, int x, int y, int w, int h) const {
        return {pageLeft(page) + x * zoom, kRuler + y * zoom, w * zoom, h * zoom};
    }
    // The page pixel under a content point; nothing in the gaps and the ruler.
    [[nodiscard]] std::optional<PagePoint> hit(QPoint content, int pages) const;
    // The page whose span holds a content x (the leftmost page shown for a scroll position).
    [[nodiscard]] int pageAt(int contentX) const {
        return contentX <= 0 ? 0 : contentX / pageSpan();
    }
};

} // namespace torquil
