#include "app/car_field_pictures.h"

#include "app/board_palette.h"
#include "app/car_sprite_image.h"
#include "session/style_session.h"
#include "sprites/clut.h"

#include <QPainter>
#include <QPalette>

#include <vector>

namespace torquil {

namespace {

constexpr int kMargin = 24; // around the sprite, for the marks that lie outside it
constexpr int kLegend = 72; // below the picture, for the words
constexpr int kMarkRadius = 5;

struct Canvas {
    FieldPicture picture;
    std::unique_ptr<QPainter> painter;
};

// The enlarged sprite with its centre lines, room for the legend below; null when the car has
// no sprite.
Canvas spriteCanvas(StyleSession& session, int asn, const QPoint& farthest) {
    Canvas c;
    const CarEntry* car = session.cars.find(asn);
    const SpriteRec* sprite = car ? findSpriteByAsn(session, asn) : nullptr;
    if (!sprite) return c;
    const QImage image = spriteImage(
        session, *sprite, spriteColours(session.colours, session.style.header.is24, *sprite));
    const QSize shown = image.size() * kFieldPictureScale;
    // Marks past the sprite's edge widen the picture so that they stay in it.
    const int padX = std::max(kMargin, (std::abs(farthest.x()) + 2) * kFieldPictureScale -
                                           shown.width() / 2 + kMargin);
    const int padY = std::max(kMargin, (std::abs(farthest.y()) + 2) * kFieldPictureScale -
                                           shown.height() / 2 + kMargin);
    const int width = std::max(shown.width() + 2 * padX, 420);
    c.picture.image = QImage(width, shown.height() + 2 * padY + kLegend, QImage::Format_ARGB32);
    c.picture.image.fill(boardPalette().color(QPalette::Window));
    const QRect at((width - shown.width()) / 2, padY, shown.width(), shown.height());
    c.picture.centre = at.topLeft() + QPoint(shown.width() / 2, shown.height() / 2);
    c.painter = std::make_unique<QPainter>(&c.picture.image);
    paintChecker(*c.painter, at);
    c.painter->drawImage(at, image);
    c.painter->setPen(QPen(QColor::fromRgba(kSpriteCentreColour), 1, Qt::DashLine));
    c.painter->drawLine(c.picture.centre.x(), at.top() - kMargin / 2, c.picture.centre.x(),
                        at.bottom() + kMargin / 2);
    c.painter->drawLine(at.left() - kMargin / 2, c.picture.centre.y(), at.right() + kMargin / 2,
                        c.picture.centre.y());
    return c;
}

// A ring at `at`; its label to the right, or to the left when `leftOf` (marks left of the
// sprite's centre), so that the labels of marks on both sides never run into each other.
void drawMark(QPainter& p, const QPoint& at, QRgb colour, const QString& label, bool leftOf) {
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setPen(QPen(QColor::fromRgba(colour), 2));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(at, kMarkRadius, kMarkRadius);
    p.setBrush(QColor::fromRgba(colour));
    p.drawEllipse(at, 1, 1);
    p.setRenderHint(QPainter::Antialiasing, false);
    if (!label.isEmpty()) {
        QFont font = p.font();
        font.setBold(true);
        p.setFont(font);
        const int width = p.fontMetrics().horizontalAdvance(label);
        p.drawText(
            at + QPoint(leftOf ? -kMarkRadius - 3 - width : kMarkRadius + 3, -kMarkRadius - 2),
            label);
    }
}

void drawLegend(Canvas& c, const QStringList& lines) {
    QPainter& p = *c.painter;
    QFont font = p.font();
    font.setBold(false);
    p.setFont(font);
    p.setPen(boardPalette().color(QPalette::WindowText));
    const int top = c.picture.image.height() - kLegend + 8;
    for (int i = 0; i < lines.size(); ++i) p.drawText(QPoint(10, top + 14 * (i + 1) - 4), lines[i]);
}

} // namespace

FieldPicture centreOfMassPicture(StyleSession& session, int asn) {
    const CarEntry* car = session.cars.find(asn);
    if (!car) return {};
    const int cx = car->info.cx, cy = car->info.cy;
    Canvas c = spriteCanvas(session, asn, {cx, cy});
    if (!c.painter) return {};
    const QPoint at = c.picture.pointOf(cx, cy);
    // An arrow from the sprite's centre to the centre of mass shows the offset.
    c.painter->setPen(QPen(QColor::fromRgba(kCentreMarkColour), 1));
    c.painter->drawLine(c.picture.centre, at);
    drawMark(*c.painter, at, kCentreMarkColour, QStringLiteral("cx %1, cy %2").arg(cx).arg(cy),
             cx < 0);
    drawLegend(c, {QStringLiteral("Red ring: the centre of mass, cx pixels right (left when"),
                   QStringLiteral("negative) and cy pixels down (up when negative) of the"),
                   QStringLiteral("sprite's centre, where the dashed lines cross.")});
    c.painter.reset();
    return c.picture;
}

FieldPicture doorPositionsPicture(StyleSession& session, int asn) {
    const CarEntry* car = session.cars.find(asn);
    if (!car) return {};
    QPoint farthest;
    for (const DoorRec& d : car->doorList)
        farthest = QPoint(std::max(std::abs(farthest.x()), std::abs(int{d.rpx})),
                          std::max(std::abs(farthest.y()), std::abs(int{d.rpy})));
    Canvas c = spriteCanvas(session, asn, farthest);
    if (!c.painter) return {};
    for (std::size_t i = 0; i < car->doorList.size(); ++i) {
        const DoorRec& d = car->doorList[i];
        drawMark(*c.painter, c.picture.pointOf(d.rpx, d.rpy), kDoorMarkColour,
                 QStringLiteral("door %1: delta %2").arg(i + 1).arg(d.delta), d.rpx < 0);
    }
    drawLegend(c, {QStringLiteral("Blue rings: the doors, each rpx pixels right and rpy"),
                   QStringLiteral("pixels down of the sprite's centre (where the dashed lines"),
                   QStringLiteral("cross), with the delta its opening is drawn with.")});
    c.painter.reset();
    return c.picture;
}

} // namespace torquil
