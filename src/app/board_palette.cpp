#include "app/board_palette.h"

#include <QApplication>
#include <QColor>
#include <QPalette>
#include <QStyleFactory>

namespace torquil {

QPalette boardPalette() {
    const QColor window(48, 51, 57); // the board's rulers
    const QColor base(38, 40, 45);   // the board's background
    const QColor text(222, 226, 232);
    const QColor highlight(74, 120, 196);
    const QColor disabledText(120, 125, 134);
    QPalette p;
    p.setColor(QPalette::Window, window);
    p.setColor(QPalette::WindowText, text);
    p.setColor(QPalette::Base, base);
    p.setColor(QPalette::AlternateBase, window);
    p.setColor(QPalette::ToolTipBase, QColor(30, 32, 36));
    p.setColor(QPalette::ToolTipText, text);
    p.setColor(QPalette::PlaceholderText, disabledText);
    p.setColor(QPalette::Text, text);
    p.setColor(QPalette::Button, QColor(58, 62, 69));
    p.setColor(QPalette::ButtonText, text);
    p.setColor(QPalette::BrightText, QColor(255, 210, 63)); // the board's selection
    p.setColor(QPalette::Light, QColor(78, 83, 92));
    p.setColor(QPalette::Midlight, QColor(66, 70, 78));
    p.setColor(QPalette::Mid, QColor(44, 47, 52));
    p.setColor(QPalette::Dark, QColor(28, 30, 34));
    p.setColor(QPalette::Shadow, QColor(12, 13, 15));
    p.setColor(QPalette::Highlight, highlight);
    p.setColor(QPalette::HighlightedText, QColor(255, 255, 255));
    p.setColor(QPalette::Link, QColor(120, 170, 240));
    p.setColor(QPalette::LinkVisited, QColor(170, 140, 230));
    for (QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText})
        p.setColor(QPalette::Disabled, role, disabledText);
    p.setColor(QPalette::Disabled, QPalette::Base, window);
    p.setColor(QPalette::Disabled, QPalette::Button, window);
    return p;
}

void applyBoardPalette(QApplication& app) {
    if (QStyle* fusion = QStyleFactory::create(QStringLiteral("Fusion"))) app.setStyle(fusion);
    app.setPalette(boardPalette());
}

} // namespace torquil
