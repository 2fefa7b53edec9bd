#pragma once
// The page board: the session's page image, page after page, scrolled by the page scroll bar
// BlockScroll. It draws the selected sprite's highlight and reports the mouse in page pixels;
// what a click means is the main form's business.

#include "app/board_geometry.h"

#include <QAbstractScrollArea>
#include <QImage>

#include <optional>

namespace torquil {

class StyleSession;

class PageBoard : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit PageBoard(QWidget* parent = nullptr);

    // The session shown; nullptr shows nothing. The board never owns it.
    void setSession(StyleSession* session);
    [[nodiscard]] StyleSession* session() const { return session_; }
    // While a load runs, pages are shown as they arrive, before the session counts as loaded.
    void setLoading(bool loading);

    [[nodiscard]] int zoom() const { return geometry_.zoom; }
    void setZoom(int zoom);

    // Pages the board shows (0 when nothing is loaded).
    [[nodiscard]] int pagesShown() const;
    // Repaints from the page image and follows gBoardOffset when the core moved it.
    void refresh();
    // Scrolls so that the page is at the left edge; sets gBoardOffset.
    void showPage(int page);
    // The widget point (viewport coordinates) of a page pixel, for tests and tool tips.
    [[nodiscard]] QPoint viewportPoint(int page, int x, int y) const;
    // Size of the viewport that shows exactly `pages` pages at the current zoom.
    [[nodiscard]] QSize viewportSizeFor(int pages) const;
    // The page pixel under a viewport point; none beside the pages.
    [[nodiscard]] std::optional<PagePoint> pagePointAt(QPoint viewportPos) const;
    // The ruler's text over a page: its number and how many sprites (or tiles) it holds.
    [[nodiscard]] QString pageLabel(int page) const;
    // The largest zoom (1..4) at which a whole page fits the board as it is now.
    [[nodiscard]] int fitZoom() const;
    // Scrolls just enough that a page is wholly in view (nothing when it already is).
    void ensurePageVisible(int page);

signals:
    void hovered(int page, int x, int y);      // page -1: the mouse is over no page
    void pixelClicked(int page, int x, int y); // page -1: a click beside the pages
    void pixelDoubleClicked(int page, int x, int y);
    void zoomChanged(int zoom);
    void stepRequested(int step); // arrow keys: the next (1) or previous (-1) sprite
    void activateRequested();     // Enter: the selected sprite's command

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void wrapImage();
    void updateScrollBars();
    [[nodiscard]] QPoint
    contentOrigin() const; // content coordinate of the viewport's top-left corner
    void paintRuler(class QPainter& p, int pages) const;
    void paintSpriteFrame(QPainter& p, int page, int sib, bool selected) const;
    void paintEmptyHint(QPainter& p) const;

    StyleSession* session_ = nullptr;
    QImage image_; // wraps session_->image.rgb without copying
    BoardGeometry geometry_;
    bool loading_ = false;
    int followedOffset_ = -1; // the gBoardOffset the view last followed
    bool scrollingFromCore_ = false;
    int hoverPage_ = -1, hoverSib_ = 0;
};

} // namespace torquil
