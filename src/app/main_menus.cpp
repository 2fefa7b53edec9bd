#include "app/main_menus.h"

#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

#include <vector>

namespace torquil {

namespace {

enum Kind { Entry, Submenu, Separator, Check };

struct Item {
    int depth; // 0: top menu, 1: its entries, 2: entries of a submenu
    Kind kind;
    const char* name;
    const char* caption;
    const char* shortcut = nullptr;
};

// The menus top to bottom: the object names and captions the window shows.
const std::vector<Item>& menuTree() {
    static const std::vector<Item> tree = {
        {0, Submenu, "mnuFile", "&File"},
        {1, Entry, "mnuOpen", "&Open KRB Data File", "Ctrl+O"},
        {1, Submenu, "mnuRecent", "Open &Recent"},
        {1, Separator, "void3", ""},
        {1, Submenu, "mnuFileLoad", "&Load"},
        {2, Entry, "mnuLoadGC3", "GC3 Car Pack"},
        {2, Entry, "mnuLoadBMP", "BMP Car"},
        {1, Submenu, "mnuFileBuild", "&Build"},
        {2, Entry, "mnuBuildGC3", "GC3 Car Pack"},
        {1, Separator, "void1", ""},
        {1, Entry, "mnuSaveBlock", "&Save Changes", "Ctrl+S"},
        {1, Separator, "void2", ""},
        {1, Entry, "mnuExit", "E&xit"},
        {0, Submenu, "mnuEdit", "&Edit"},
        {1, Entry, "mnuUndo", "&Undo"},
        {1, Entry, "mnuRedo", "&Redo"},
        {1, Separator, "void6", ""},
        {1, Entry, "mnuSettings", "&Settings..."},
        {0, Submenu, "mnuSprite", "&Sprite"},
        {1, Submenu, "mnuImport", "&Import"},
        {2, Entry, "mnuImportSprite", "&Sprite"},
        {2, Entry, "mnuImportSpriteFrom", "Import Sprite &From..."},
        {2, Entry, "mnuImportDeltas", "&Delta Set"},
        {1, Submenu, "mnuExport", "&Export"},
        {2, Entry, "mnuExportSprite", "&Sprite"},
        {2, Entry, "mnuExportSpriteAs", "Export Sprite &As..."},
        {2, Entry, "mnuExportDeltas0", "&Delta Set"},
        {2, Entry, "mnuExportDeltas1", "Delta Set (&Clean)"},
        {1, Submenu, "mnuView", "&View"},
        {2, Entry, "mnuViewDeltas0", "Deltas (&plain)"},
        {2, Entry, "mnuViewDeltas1", "&Deltas (with car)"},
        {1, Submenu, "mnuTransp", "&Transparency"},
        {2, Entry, "mnuTranspCheck", "&View"},
        {2, Entry, "mnuTranspCorrect", "&Fix"},
        {1, Separator, "void5", ""},
        {1, Entry, "mnuEditInPaint", "Edit in &Paint Program", "Ctrl+E"},
        {0, Submenu, "mnuCarInfo", "&Car Info"},
        {1, Entry, "mnuFindCar", "&Find Car", "Ctrl+F"},
        {1, Entry, "mnuEditCar", "&Edit Car", "F2"},
        {0, Submenu, "mnuWindow", "&Window"},
        {1, Entry, "mnuFormExpand", "&Expand to Screen"},
        {1, Entry, "mnuFormShrink", "&Shrink to Page"},
        {0, Submenu, "mnuDebug", "&Debug"},
        {1, Entry, "mnuDbgReadGC3", "ReadGC3"},
        {1, Entry, "mnudbgfxttxt", "WriteGC3"},
        {1, Entry, "mnuWinDetails", "Show &Details Window"},
        {1, Check, "mnuGenCarInfoFiles", "Generate CarInfo Files"},
        {1, Check, "mnuGenSpriteInfoFiles", "Generate SpriteInfo Files"},
        {1, Check, "mnuGenCLUTFiles", "Generate PalIndex/CLUTData Files"},
        {1, Check, "mnuGenDeltaDump", "Generate Delta Dump Files"},
        {0, Submenu, "mnuHelp", "&Help"},
        {1, Entry, "mnuHelpContents", "&Contents", "F1"},
        {1, Entry, "mnuHelpSearch", "&Search For Help On..."},
        {1, Entry, "mnuReadMe", "&Read Me File"},
        {1, Separator, "void4", ""},
        {1, Entry, "mnuAbout", "&About Torquil..."},
    };
    return tree;
}

} // namespace

MainMenus::MainMenus(QMenuBar* bar) {
    QMenu* parents[3] = {nullptr, nullptr, nullptr};
    for (const Item& item : menuTree()) {
        const QString name = QString::fromLatin1(item.name);
        const QString caption = QString::fromLatin1(item.caption);
        QAction* action = nullptr;
        if (item.kind == Submenu) {
            QMenu* menu =
                item.depth == 0 ? bar->addMenu(caption) : parents[item.depth - 1]->addMenu(caption);
            menu->setObjectName(name);
            parents[item.depth] = menu;
            menus_.insert(name, menu);
            action = menu->menuAction();
        } else if (item.kind == Separator) {
            action = parents[item.depth - 1]->addSeparator();
        } else {
            action = parents[item.depth - 1]->addAction(caption);
            action->setCheckable(item.kind == Check);
            if (item.shortcut)
                action->setShortcut(QKeySequence(QString::fromLatin1(item.shortcut)));
        }
        action->setObjectName(name);
        actions_.insert(name, action);
    }
}

} // namespace torquil
