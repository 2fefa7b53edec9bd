// The window's menus top to bottom with their names, captions and shortcuts, and the toolbar's
// buttons with their tool tips.

#include "gui_fixture.h"

#include "app/main_form.h"
#include "app/main_menus.h"
#include "app/main_tool_bar.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QtTest>

#include <functional>

using namespace torquil;
using torquil::testing::WindowHarness;

class MenuTreeTest : public QObject {
    Q_OBJECT
private slots:
    void menuTreeAndToolbarKeepTheirNamesAndTexts();
};

void MenuTreeTest::menuTreeAndToolbarKeepTheirNamesAndTexts() {
    WindowHarness h;
    QStringList tree;
    std::function<void(QMenu*, int)> walk = [&](QMenu* menu, int depth) {
        for (QAction* a : menu->actions()) {
            tree << QString(depth, '-') + a->objectName() + "=" +
                        (a->isSeparator() ? "|" : a->text()) + (a->isCheckable() ? "[x]" : "");
            if (a->menu()) walk(a->menu(), depth + 1);
        }
    };
    for (QAction* top : h.form->menuBar()->actions()) {
        tree << top->objectName() + "=" + top->text();
        walk(top->menu(), 1);
    }
    const QStringList expected = {"mnuFile=&File",
                                  "-mnuOpen=&Open KRB Data File",
                                  "-mnuRecent=Open &Recent",
                                  "--mnuRecentNone=(no recent files)",
                                  "-void3=|",
                                  "-mnuFileLoad=&Load",
                                  "--mnuLoadGC3=GC3 Car Pack",
                                  "--mnuLoadBMP=BMP Car",
                                  "-mnuFileBuild=&Build",
                                  "--mnuBuildGC3=GC3 Car Pack",
                                  "-void1=|",
                                  "-mnuSaveBlock=&Save Changes",
                                  "-void2=|",
                                  "-mnuExit=E&xit",
                                  "mnuEdit=&Edit",
                                  "-mnuUndo=&Undo",
                                  "-mnuRedo=&Redo",
                                  "-void6=|",
                                  "-mnuSettings=&Settings...",
                                  "mnuSprite=&Sprite",
                                  "-mnuImport=&Import",
                                  "--mnuImportSprite=&Sprite",
                                  "--mnuImportSpriteFrom=Import Sprite &From...",
                                  "--mnuImportDeltas=&Delta Set",
                                  "-mnuExport=&Export",
                                  "--mnuExportSprite=&Sprite",
                                  "--mnuExportSpriteAs=Export Sprite &As...",
                                  "--mnuExportDeltas0=&Delta Set",
                                  "--mnuExportDeltas1=Delta Set (&Clean)",
                                  "-mnuView=&View",
                                  "--mnuViewDeltas0=Deltas (&plain)",
                                  "--mnuViewDeltas1=&Deltas (with car)",
                                  "-mnuTransp=&Transparency",
                                  "--mnuTranspCheck=&View",
                                  "--mnuTranspCorrect=&Fix",
                                  "-void5=|",
                                  "-mnuEditInPaint=Edit in &Paint Program",
                                  "mnuCarInfo=&Car Info",
                                  "-mnuFindCar=&Find Car",
                                  "-mnuEditCar=&Edit Car",
                                  "mnuBoardView=&View",
                                  "-mnuCarList=Car &List[x]",
                                  "-mnuFitZoom=&Fit Pages to Window",
                                  "mnuWindow=&Window",
                                  "-mnuFormExpand=&Expand to Screen",
                                  "-mnuFormShrink=&Shrink to Page",
                                  "-=|",
                                  "-mnuZoom=&Zoom",
                                  "--mnuZoom1=1x[x]",
                                  "--mnuZoom2=2x[x]",
                                  "--mnuZoom3=3x[x]",
                                  "--mnuZoom4=4x[x]",
                                  "mnuDebug=&Debug",
                                  "-mnuDbgReadGC3=ReadGC3",
                                  "-mnudbgfxttxt=WriteGC3",
                                  "-mnuWinDetails=Show &Details Window",
                                  "-mnuGenCarInfoFiles=Generate CarInfo Files[x]",
                                  "-mnuGenSpriteInfoFiles=Generate SpriteInfo Files[x]",
                                  "-mnuGenCLUTFiles=Generate PalIndex/CLUTData Files[x]",
                                  "-mnuGenDeltaDump=Generate Delta Dump Files[x]",
                                  "mnuHelp=&Help",
                                  "-mnuHelpContents=&Contents",
                                  "-mnuHelpSearch=&Search For Help On...",
                                  "-mnuReadMe=&Read Me File",
                                  "-void4=|",
                                  "-mnuAbout=&About Torquil..."};
    QCOMPARE(tree, expected);

    QStringList buttons;
    for (QAction* a : h.form->toolBar()->actions())
        buttons << (a->isSeparator() ? QStringLiteral("|") : a->objectName() + "=" + a->toolTip());
    const QStringList expectedButtons = {"open=Open Style File:",
                                         "save=Save Style File",
                                         "|",
                                         "loadbmp=Quickload a BMP file",
                                         "loadgc3=Load GC3 Car Pack",
                                         "|",
                                         "carinfo=Edit Car Info Settings",
                                         "find=Find Car",
                                         "|",
                                         "exportsprite=Export Sprite",
                                         "importsprite=Import Sprite",
                                         "|",
                                         "exportdeltasdirty=Export Delta Set Dirty for reference",
                                         "|",
                                         "exportdeltasclean=Export Delta Set Clean for self build",
                                         "importdeltas=Import Delta Set"};
    QCOMPARE(buttons, expectedButtons);
    for (QAction* a : h.form->toolBar()->actions())
        if (!a->isSeparator()) QVERIFY(!a->icon().isNull());

    // The shortcuts of the entries that have one.
    QStringList shortcuts;
    for (const char* name : {"mnuOpen", "mnuSaveBlock", "mnuEditInPaint", "mnuFindCar",
                             "mnuEditCar", "mnuHelpContents"})
        shortcuts << QString::fromLatin1(name) + "=" + h.action(name)->shortcut().toString();
    QCOMPARE(shortcuts,
             QStringList({"mnuOpen=Ctrl+O", "mnuSaveBlock=Ctrl+S", "mnuEditInPaint=Ctrl+E",
                          "mnuFindCar=Ctrl+F", "mnuEditCar=F2", "mnuHelpContents=F1"}));
}

QTEST_MAIN(MenuTreeTest)
#include "menu_tree_test.moc"
