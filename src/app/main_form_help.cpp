// The Help and Debug menus.

#include "app/details_form.h"
#include "app/help_window.h"
#include "app/main_form.h"
#include "base/work_dir.h"
#include "exchange/gc3.h"
#include "platform/qt/qt_platform.h"

#include <QCoreApplication>

#include <filesystem>

namespace torquil {

namespace fs = std::filesystem;

namespace {

const char* kNoHelp =
    "Unable to display Help Contents. There is no Help associated with this project.";

// The fixed files of the car pack checks in the Debug menu.
struct Gc3TestFiles {
    fs::path folder, modStyle, origStyle, modFxt, origFxt, pack;
};

Gc3TestFiles gc3TestFiles(const fs::path& workDir) {
    const fs::path folder = workDir / "gc3test";
    return {folder,
            folder / "STYLE001.G24",
            folder / "ORIGSTYLE001.G24",
            folder / "ENGLISH.FXT",
            folder / "ORIGENGLISH.FXT",
            folder / "STYLE001.GC3"};
}

} // namespace

void MainForm::mnuHelpContents_Click() {
    if (!platform_.desktop().hasHelp()) {
        platform_.message(kNoHelp, Buttons::Ok, Icon::Information);
        return;
    }
    platform_.desktop().showHelp(0);
}

void MainForm::mnuHelpSearch_Click() {
    mnuHelpContents_Click();
}

void MainForm::mnuReadMe_Click() {
    const fs::path readme = findReadme(
        options_.workDir, fs::path(QCoreApplication::applicationDirPath().toStdString()));
    // Shown in the program's own help window: no outside viewer is needed.
    if (!help_) help_ = new HelpWindow(this);
    if (help_->showTextFile(QString::fromStdString(readme.string()))) {
        help_->show();
        help_->raise();
        help_->activateWindow();
        return;
    }
    platform_.message(std::string("Sorry, ") + readme.string() + " not found." + "\r" +
                      "Please manually view the readme.doc file in the TORQUIL directory.");
}

void MainForm::mnuAbout_Click() {
    const std::string version = QCoreApplication::applicationVersion().toStdString();
    platform_.message("Torquil " + version +
                          "\r\rEditor of the car graphics and car data of the KRB game's style "
                          "files (.G24, .GRY), its ENGLISH.FXT car names and its level sounds.\r\r"
                          "Run the game only after saving: it must not use a style file while "
                          "Torquil writes it.\r\rProgram directory: " +
                          options_.workDir.string(),
                      Buttons::Ok, Icon::Information, "About Torquil");
}

void MainForm::mnuWinDetails_Click() {
    details_->show();
    details_->raise();
    details_->activateWindow();
}

void MainForm::mnuDbgReadGC3_Click() {
    const Gc3TestFiles files = gc3TestFiles(options_.workDir);
    Gc3Header header;
    if (!readGC3(files.pack, header, platform_)) return;
    platform_.detail("GC3 file:" + files.pack.string());
    for (const std::string& line : gc3HeaderLines(header)) platform_.detail(line);
    mnuWinDetails_Click();
}

void MainForm::mnudbgfxttxt_Click() {
    const Gc3TestFiles f = gc3TestFiles(options_.workDir);
    platform_.detail("GC3 test folder:" + f.folder.string());
    if (writeGC3(f.modStyle, f.origStyle, f.modFxt, f.origFxt, f.pack, platform_))
        platform_.message("GC3 file written:\r" + f.pack.string(), Buttons::Ok, Icon::Information);
}

void MainForm::setDumpFlag(const QString& control, bool on) {
    // Kept in the program's options so that every later session writes the dumps too.
    DumpFlags& dumps = options_.dumps;
    if (control == QLatin1String("mnuGenCarInfoFiles"))
        dumps.carInfo = on;
    else if (control == QLatin1String("mnuGenSpriteInfoFiles"))
        dumps.spriteInfo = on;
    else if (control == QLatin1String("mnuGenCLUTFiles"))
        dumps.clut = on;
    else if (control == QLatin1String("mnuGenDeltaDump"))
        dumps.delta = on;
    session_->options.dumps = dumps;
}

} // namespace torquil
