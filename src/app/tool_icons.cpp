#include "app/tool_icons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <cmath>

#include <functional>

namespace torquil {

namespace {

// Every icon is drawn on a 24 x 24 grid.
using Drawing = std::function<void(QPainter&)>;

QPixmap render(const Drawing& draw, int size, QIcon::Mode mode) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(size / 24.0, size / 24.0);
    draw(p);
    if (mode == QIcon::Disabled) {
        // Grey the drawing out: keep its shape, lighten and desaturate it.
        p.setCompositionMode(QPainter::CompositionMode_SourceIn);
        p.fillRect(QRectF(0, 0, 24, 24), QColor(150, 150, 150, 140));
    }
    return pixmap;
}

QIcon makeIcon(const Drawing& draw) {
    QIcon icon;
    for (int size : {24, 48}) {
        icon.addPixmap(render(draw, size, QIcon::Normal), QIcon::Normal);
        icon.addPixmap(render(draw, size, QIcon::Disabled), QIcon::Disabled);
    }
    return icon;
}

const QColor kInk(48, 56, 68);

void arrow(QPainter& p, QPointF from, QPointF to, const QColor& colour) {
    p.setPen(QPen(colour, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.drawLine(from, to);
    const QPointF d = to - from;
    const double len = std::hypot(d.x(), d.y());
    const QPointF u = d / len;
    const QPointF n(-u.y(), u.x());
    QPolygonF head;
    head << to + u * 1.5 << to - u * 3.5 + n * 3.5 << to - u * 3.5 - n * 3.5;
    p.setPen(Qt::NoPen);
    p.setBrush(colour);
    p.drawPolygon(head);
}

void spriteTile(QPainter& p, QRectF r, const QColor& a, const QColor& b) {
    p.setPen(Qt::NoPen);
    const double cell = r.width() / 4;
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x) {
            p.setBrush((x + y) % 2 ? a : b);
            p.drawRect(QRectF(r.left() + x * cell, r.top() + y * cell, cell, cell));
        }
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(kInk, 1.2));
    p.drawRect(r);
}

void folder(QPainter& p) {
    p.setPen(QPen(QColor(160, 110, 20), 1.2));
    p.setBrush(QColor(246, 190, 70));
    QPainterPath back;
    back.moveTo(2, 6);
    back.lineTo(9, 6);
    back.lineTo(11, 8);
    back.lineTo(21, 8);
    back.lineTo(21, 19);
    back.lineTo(2, 19);
    back.closeSubpath();
    p.drawPath(back);
    p.setBrush(QColor(252, 212, 110));
    QPolygonF front;
    front << QPointF(4, 11) << QPointF(23, 11) << QPointF(21, 19) << QPointF(2, 19);
    p.drawPolygon(front);
}

void floppy(QPainter& p) {
    p.setPen(QPen(QColor(30, 70, 140), 1.2));
    p.setBrush(QColor(60, 120, 210));
    p.drawRoundedRect(QRectF(3, 3, 18, 18), 2, 2);
    p.setBrush(QColor(235, 240, 248));
    p.drawRect(QRectF(7, 3, 10, 6));
    p.setBrush(QColor(250, 250, 250));
    p.drawRect(QRectF(6, 13, 12, 8));
    p.setPen(QPen(QColor(30, 70, 140), 1.6));
    p.drawLine(QPointF(14, 4.5), QPointF(14, 7.5));
}

void picture(QPainter& p) {
    p.setPen(QPen(kInk, 1.2));
    p.setBrush(QColor(200, 230, 250));
    p.drawRect(QRectF(2.5, 4.5, 15, 12));
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(80, 160, 80));
    QPolygonF hill;
    hill << QPointF(3, 16) << QPointF(8, 10) << QPointF(12, 14) << QPointF(14, 12)
         << QPointF(17, 16);
    p.drawPolygon(hill);
    p.setBrush(QColor(250, 200, 60));
    p.drawEllipse(QPointF(13.5, 8), 1.8, 1.8);
    arrow(p, QPointF(19, 9), QPointF(19, 21), QColor(30, 140, 60));
}

void package(QPainter& p) {
    p.setPen(QPen(QColor(120, 80, 40), 1.2));
    p.setBrush(QColor(205, 160, 105));
    p.drawRect(QRectF(3.5, 8.5, 17, 12));
    p.setBrush(QColor(225, 185, 130));
    QPolygonF lid;
    lid << QPointF(3.5, 8.5) << QPointF(6.5, 4) << QPointF(17.5, 4) << QPointF(20.5, 8.5);
    p.drawPolygon(lid);
    p.setPen(QPen(QColor(120, 80, 40), 2));
    p.drawLine(QPointF(12, 4), QPointF(12, 20.5));
}

void car(QPainter& p) {
    p.setPen(QPen(QColor(120, 20, 20), 1.2));
    p.setBrush(QColor(215, 50, 45));
    QPainterPath body;
    body.moveTo(2, 15);
    body.lineTo(2, 12);
    body.lineTo(6, 11);
    body.lineTo(9, 7);
    body.lineTo(16, 7);
    body.lineTo(19, 11);
    body.lineTo(22, 12);
    body.lineTo(22, 15);
    body.closeSubpath();
    p.drawPath(body);
    p.setBrush(QColor(200, 230, 250));
    p.setPen(Qt::NoPen);
    p.drawRect(QRectF(9.8, 8.2, 2.8, 2.6));
    p.drawRect(QRectF(13.4, 8.2, 2.8, 2.6));
    p.setBrush(kInk);
    p.drawEllipse(QPointF(7, 15.5), 2.5, 2.5);
    p.drawEllipse(QPointF(17, 15.5), 2.5, 2.5);
    p.setBrush(QColor(60, 120, 210));
    p.drawEllipse(QPointF(18.5, 5), 4, 4);
    p.setPen(QPen(Qt::white, 1.6, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(18.5, 4.5), QPointF(18.5, 7));
    p.drawPoint(QPointF(18.5, 2.6));
}

void magnifier(QPainter& p) {
    p.setPen(QPen(kInk, 2.2));
    p.setBrush(QColor(200, 230, 250));
    p.drawEllipse(QPointF(10, 10), 6, 6);
    p.setPen(QPen(kInk, 3.2, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(14.5, 14.5), QPointF(20.5, 20.5));
}

void spriteOut(QPainter& p) {
    spriteTile(p, QRectF(2.5, 8.5, 12, 12), QColor(215, 50, 45), QColor(250, 200, 60));
    arrow(p, QPointF(11, 12), QPointF(20, 3), QColor(30, 110, 200));
}

void spriteIn(QPainter& p) {
    spriteTile(p, QRectF(9.5, 8.5, 12, 12), QColor(215, 50, 45), QColor(250, 200, 60));
    arrow(p, QPointF(3, 3), QPointF(12, 12), QColor(30, 140, 60));
}

void deltas(QPainter& p, const QColor& dots, bool out) {
    spriteTile(p, out ? QRectF(2.5, 8.5, 12, 12) : QRectF(9.5, 8.5, 12, 12), QColor(220, 220, 225),
               QColor(245, 245, 248));
    p.setPen(Qt::NoPen);
    p.setBrush(dots);
    const double x0 = out ? 5.5 : 12.5;
    p.drawEllipse(QPointF(x0 + 1, 12), 1.6, 1.6);
    p.drawEllipse(QPointF(x0 + 5, 16.5), 1.6, 1.6);
    p.drawEllipse(QPointF(x0 + 1.5, 17.5), 1.2, 1.2);
    if (out)
        arrow(p, QPointF(11, 12), QPointF(20, 3), QColor(30, 110, 200));
    else
        arrow(p, QPointF(3, 3), QPointF(12, 12), QColor(30, 140, 60));
}

} // namespace

QIcon toolIcon(const QString& key) {
    if (key == QLatin1String("open")) return makeIcon(folder);
    if (key == QLatin1String("save")) return makeIcon(floppy);
    if (key == QLatin1String("loadbmp")) return makeIcon(picture);
    if (key == QLatin1String("loadgc3")) return makeIcon(package);
    if (key == QLatin1String("carinfo")) return makeIcon(car);
    if (key == QLatin1String("find")) return makeIcon(magnifier);
    if (key == QLatin1String("exportsprite")) return makeIcon(spriteOut);
    if (key == QLatin1String("importsprite")) return makeIcon(spriteIn);
    if (key == QLatin1String("exportdeltasdirty"))
        return makeIcon([](QPainter& p) { deltas(p, QColor(215, 120, 30), true); });
    if (key == QLatin1String("exportdeltasclean"))
        return makeIcon([](QPainter& p) { deltas(p, QColor(40, 160, 80), true); });
    if (key == QLatin1String("importdeltas"))
        return makeIcon([](QPainter& p) { deltas(p, QColor(215, 120, 30), false); });
    return {};
}

} // namespace torquil
