#include "app/page_board.h"

#include "session/edits.h"
#include "session/session_io.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace torquil {

namespace {
const QColor kBoardBackground(38, 40, 45);
const QColor kRulerBackground(48, 51, 57);
const QColor kRulerText(190, 196, 206);
const QColor kSelection(255, 210, 63);
} // namespace

PageBoard::PageBoard(QWidget* parent) : QAbstractScrollArea(parent) {
    setObjectName(QStringLiteral("picBack"));
    horizontalScrollBar()->setObjectName(QStringLiteral("BlockScroll"));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setFrameShape(QFrame::NoFrame);
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    updateScrollBars();
}

void PageBoard::setSession(StyleSession* session) {
    session_ = session;
    wrapImage();
    followedOffset_ = -1;
    hoverPage_ = -1;
    hoverSib_ = 0;
    updateScrollBars();
    scrollingFromCore_ = true;
    horizontalScrollBar()->setValue(0);
    verticalScrollBar()->setValue(0);
    scrollingFromCore_ = false;
    viewport()->update();
}

void PageBoard::setLoading(bool loading) {
    loading_ = loading;
    refresh();
}

void PageBoard::wrapImage() {
    if (!session_) {
        image_ = QImage();
        return;
    }
    // The core's 0x00RRGGBB buffer read as RGB32: no copy, and the alpha byte is ignored.
    auto* bits = reinterpret_cast<const uchar*>(session_->image.rgb.data());
    image_ = QImage(bits, kImageWidth, kPageSize, kImageWidth * 4, QImage::Format_RGB32);
}

void PageBoard::setZoom(int zoom) {
    zoom = std::clamp(zoom, 1, 4);
    if (zoom == geometry_.zoom) return;
    const int page = session_ ? session_->pages.gBoardOffset / 256 : 0;
    geometry_.zoom = zoom;
    updateScrollBars();
    showPage(page);
    viewport()->update();
    emit zoomChanged(zoom);
}

int PageBoard::pagesShown() const {
    if (!session_ || (!loading_ && !session_->style.loaded)) return 0;
    const Pages& pages = session_->pages;
    const int last = std::max<int>(pages.gNumBlockLoaded, pages.gBoardOffset / 256);
    return std::clamp(last + 1, 0, kMaxPages);
}

void PageBoard::refresh() {
    updateScrollBars();
    if (session_ && session_->pages.gBoardOffset != followedOffset_)
        showPage(session_->pages.gBoardOffset / 256);
    viewport()->update();
}

void PageBoard::showPage(int page) {
    page = std::clamp(page, 0, kMaxPages - 1);
    scrollingFromCore_ = true;
    horizontalScrollBar()->setValue(geometry_.pageLeft(page) - BoardGeometry::kGap);
    scrollingFromCore_ = false;
    if (session_) showBoardPage(*session_, page);
    followedOffset_ = page * 256;
    viewport()->update();
}

QPoint PageBoard::contentOrigin() const {
    return {horizontalScrollBar()->value(), verticalScrollBar()->value()};
}

QPoint PageBoard::viewportPoint(int page, int x, int y) const {
    return geometry_.pixelRect(page, x, y, 1, 1).center() - contentOrigin();
}

QSize PageBoard::viewportSizeFor(int pages) const {
    return {geometry_.contentWidth(std::max(pages, 1)), geometry_.contentHeight()};
}

int PageBoard::fitZoom() const {
    // The viewport without the vertical bar (the horizontal one is always shown): the fit must
    // not depend on whether the current zoom needed that bar.
    QSize room = viewport()->size();
    if (verticalScrollBar()->isVisible()) room.rwidth() += verticalScrollBar()->width();
    for (int zoom = 4; zoom > 1; --zoom) {
        BoardGeometry g;
        g.zoom = zoom;
        if (g.contentHeight() <= room.height() && g.contentWidth(1) <= room.width()) return zoom;
    }
    return 1;
}

void PageBoard::ensurePageVisible(int page) {
    const QRect target = geometry_.pageRect(page);
    const int left = horizontalScrollBar()->value();
    if (target.left() >= left && target.right() < left + viewport()->width()) return;
    showPage(page);
}

void PageBoard::updateScrollBars() {
    const QSize view = viewport()->size();
    QScrollBar* h = horizontalScrollBar();
    h->setRange(0, std::max(0, geometry_.contentWidth(pagesShown()) - view.width()));
    h->setPageStep(geometry_.pageSpan());
    h->setSingleStep(32 * geometry_.zoom);
    QScrollBar* v = verticalScrollBar();
    v->setRange(0, std::max(0, geometry_.contentHeight() - view.height()));
    v->setPageStep(std::max(1, view.height()));
    v->setSingleStep(32 * geometry_.zoom);
}

void PageBoard::scrollContentsBy(int, int) {
    viewport()->update();
    if (scrollingFromCore_ || !session_) return;
    // The user scrolled: the page at the left edge becomes the board's page.
    const int page = std::clamp(geometry_.pageAt(horizontalScrollBar()->value()), 0, kMaxPages - 1);
    showBoardPage(*session_, page);
    followedOffset_ = page * 256;
}

void PageBoard::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBars();
}

std::optional<PagePoint> PageBoard::pagePointAt(QPoint viewportPos) const {
    if (viewportPos.y() < BoardGeometry::kRuler) return std::nullopt; // the pinned ruler
    return geometry_.hit(viewportPos + contentOrigin(), pagesShown());
}

void PageBoard::paintEvent(QPaintEvent*) {
    QPainter p(viewport());
    p.fillRect(viewport()->rect(), kBoardBackground);
    const int pages = pagesShown();
    if (pages == 0 || image_.isNull()) {
        paintEmptyHint(p);
        return;
    }
    const QPoint origin = contentOrigin();
    const QRect visible(origin, viewport()->size());
    p.save();
    p.translate(-origin);
    for (int page = 0; page < pages; ++page) {
        const QRect target = geometry_.pageRect(page);
        if (!target.intersects(visible)) continue;
        p.fillRect(target.adjusted(2, 2, 2, 2), QColor(0, 0, 0, 90)); // shadow
        p.drawImage(target, image_, QRect(page * 256, 0, 256, 256));
    }
    if (hoverPage_ >= 0 && hoverSib_ > 0) paintSpriteFrame(p, hoverPage_, hoverSib_, false);
    if (session_->selection.any())
        paintSpriteFrame(p, session_->selection.page, session_->selection.sib, true);
    p.restore();
    paintRuler(p, pages);
}

void PageBoard::paintRuler(QPainter& p, int pages) const {
    const int left = horizontalScrollBar()->value();
    p.fillRect(QRect(0, 0, viewport()->width(), BoardGeometry::kRuler), kRulerBackground);
    QFont font = p.font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    p.setFont(font);
    const int selectedPage = session_->selection.any() ? session_->selection.page : -1;
    for (int page = 0; page < pages; ++page) {
        const int x = geometry_.pageLeft(page) - left;
        const int w = 256 * geometry_.zoom;
        if (x + w < 0 || x > viewport()->width()) continue;
        const QRect strip(x, 0, w, BoardGeometry::kRuler);
        if (page == selectedPage)
            p.fillRect(strip.adjusted(0, BoardGeometry::kRuler - 3, 0, 0), kSelection);
        p.setPen(page == selectedPage ? kSelection : kRulerText);
        p.drawText(strip.adjusted(4, 0, -4, -2), Qt::AlignLeft | Qt::AlignVCenter, pageLabel(page));
    }
}

QString PageBoard::pageLabel(int page) const {
    const int count = session_ ? session_->sprites.pageCount(page) : 0;
    if (count <= 0) return tr("Page %1").arg(page);
    // The tiles option shows 16 tiles a page: they are not sprites.
    if (session_->style.loadOption == kLoadTiles)
        return tr("Page %1  ·  %2 tiles").arg(page).arg(count);
    return tr("Page %1  ·  %2 sprites").arg(page).arg(count);
}

void PageBoard::paintSpriteFrame(QPainter& p, int page, int sib, bool selected) const {
    if (page < 0 || page >= kMaxPages || sib < 1 || sib > session_->sprites.pageCount(page)) return;
    const SpriteRec& s =
        session_->sprites
            .pageSprites[static_cast<std::size_t>(page)][static_cast<std::size_t>(sib)];
    const QRect r = geometry_.pixelRect(page, s.xo, s.yo, s.W, s.H);
    p.setBrush(Qt::NoBrush);
    if (selected) {
        p.setPen(QPen(QColor(0, 0, 0, 200), 4));
        p.drawRect(r.adjusted(-2, -2, 1, 1));
        p.setPen(QPen(kSelection, 2));
        p.drawRect(r.adjusted(-2, -2, 1, 1));
    } else {
        p.setPen(QPen(QColor(255, 255, 255, 170), 1, Qt::DashLine));
        p.drawRect(r.adjusted(-1, -1, 0, 0));
    }
}

void PageBoard::paintEmptyHint(QPainter& p) const {
    p.setPen(QColor(150, 156, 166));
    QFont font = p.font();
    font.setPointSizeF(font.pointSizeF() * 1.3);
    p.setFont(font);
    const QRect r = viewport()->rect();
    p.drawText(r.adjusted(0, 0, 0, -24), Qt::AlignCenter, tr("No style file open"));
    font.setPointSizeF(font.pointSizeF() / 1.3);
    p.setFont(font);
    p.drawText(r.adjusted(0, 24, 0, 0), Qt::AlignCenter,
               tr("File \u25B8 Open KRB Data File (Ctrl+O) opens a .G24 or .GRY style file"));
}

void PageBoard::mouseMoveEvent(QMouseEvent* event) {
    const std::optional<PagePoint> at = pagePointAt(event->position().toPoint());
    int page = -1, sib = 0;
    if (at && session_) {
        page = at->page;
        sib = session_->sprites.over(at->page, at->x, at->y);
    }
    if (page != hoverPage_ || sib != hoverSib_) {
        hoverPage_ = page;
        hoverSib_ = sib;
        viewport()->update();
    }
    if (at)
        emit hovered(at->page, at->x, at->y);
    else
        emit hovered(-1, 0, 0);
}

void PageBoard::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    if (const std::optional<PagePoint> at = pagePointAt(event->position().toPoint()))
        emit pixelClicked(at->page, at->x, at->y);
    else
        emit pixelClicked(-1, 0, 0);
}

void PageBoard::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    if (const std::optional<PagePoint> at = pagePointAt(event->position().toPoint()))
        emit pixelDoubleClicked(at->page, at->x, at->y);
}

void PageBoard::leaveEvent(QEvent*) {
    if (hoverPage_ != -1 || hoverSib_ != 0) viewport()->update();
    hoverPage_ = -1;
    hoverSib_ = 0;
    emit hovered(-1, 0, 0);
}

void PageBoard::wheelEvent(QWheelEvent* event) {
    if (event->modifiers() & Qt::ControlModifier) {
        const int steps = event->angleDelta().y() / 120;
        if (steps != 0) setZoom(geometry_.zoom + (steps > 0 ? 1 : -1));
        event->accept();
        return;
    }
    // With nothing to scroll vertically the wheel walks along the pages.
    if (verticalScrollBar()->maximum() == 0 || (event->modifiers() & Qt::ShiftModifier)) {
        QScrollBar* h = horizontalScrollBar();
        const int delta =
            event->angleDelta().y() != 0 ? event->angleDelta().y() : event->angleDelta().x();
        h->setValue(h->value() - delta * h->singleStep() / 40);
        event->accept();
        return;
    }
    QAbstractScrollArea::wheelEvent(event);
}

void PageBoard::keyPressEvent(QKeyEvent* event) {
    const int page = session_ ? session_->pages.gBoardOffset / 256 : 0;
    const int last = std::max(0, pagesShown() - 1);
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
        emit stepRequested(-1);
        break;
    case Qt::Key_Right:
    case Qt::Key_Down:
        emit stepRequested(1);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        emit activateRequested();
        break;
    case Qt::Key_PageUp:
        showPage(std::max(0, page - 1));
        break;
    case Qt::Key_PageDown:
        showPage(std::min(last, page + 1));
        break;
    case Qt::Key_Home:
        showPage(0);
        break;
    case Qt::Key_End:
        showPage(last);
        break;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        setZoom(geometry_.zoom + 1);
        break;
    case Qt::Key_Minus:
        setZoom(geometry_.zoom - 1);
        break;
    default:
        QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    event->accept();
}

} // namespace torquil
