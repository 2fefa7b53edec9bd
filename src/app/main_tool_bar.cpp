#include "app/main_tool_bar.h"

#include "app/tool_icons.h"

#include <QAction>

namespace torquil {

namespace {

struct Place {
    const char* key; // nullptr: a separator
    const char* tip;
};

// The buttons left to right; nullptr entries are separators between groups.
const Place kPlaces[] = {
    {"open", "Open Style File:"},
    {"save", "Save Style File"},
    {nullptr, nullptr},
    {"loadbmp", "Quickload a BMP file"},
    {"loadgc3", "Load GC3 Car Pack"},
    {nullptr, nullptr},
    {"carinfo", "Edit Car Info Settings"},
    {"find", "Find Car"},
    {nullptr, nullptr},
    {"exportsprite", "Export Sprite"},
    {"importsprite", "Import Sprite"},
    {nullptr, nullptr},
    {"exportdeltasdirty", "Export Delta Set Dirty for reference"},
    {nullptr, nullptr},
    {"exportdeltasclean", "Export Delta Set Clean for self build"},
    {"importdeltas", "Import Delta Set"},
};

} // namespace

const QStringList& MainToolBar::keys() {
    static const QStringList list = [] {
        QStringList out;
        for (const Place& p : kPlaces)
            if (p.key) out << QString::fromLatin1(p.key);
        return out;
    }();
    return list;
}

MainToolBar::MainToolBar(QWidget* parent) : QToolBar(tr("Toolbar"), parent) {
    setObjectName(QStringLiteral("Toolbar1"));
    setMovable(false);
    setIconSize(QSize(24, 24));
    setToolButtonStyle(Qt::ToolButtonIconOnly);
    for (const Place& place : kPlaces) {
        if (!place.key) {
            addSeparator();
            continue;
        }
        const QString key = QString::fromLatin1(place.key);
        QAction* action = addAction(toolIcon(key), QString::fromLatin1(place.tip));
        action->setObjectName(key);
        action->setData(key);
        action->setToolTip(QString::fromLatin1(place.tip));
        if (QWidget* w = widgetForAction(action)) w->setObjectName(key);
        connect(action, &QAction::triggered, this, [this, key] { emit keyPressed(key); });
        buttons_.insert(key, action);
    }
}

} // namespace torquil
