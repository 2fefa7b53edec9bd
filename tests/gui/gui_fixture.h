#pragma once
// What the window tests share: a Qt platform whose message boxes answer from a script and are
// recorded, a settings file of their own, the sample level in a temporary folder, and a main
// window working on it.

#include "app/load_form.h"
#include "app/main_form.h"
#include "app/main_menus.h"
#include "app/page_board.h"
#include "platform/qt/qt_platform.h"
#include "sample_level.h"

#include <QAction>
#include <QString>
#include <QTemporaryDir>
#include <QtTest>

#include <deque>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace torquil::testing {

class ScriptedQtPlatform : public QtPlatform {
public:
    explicit ScriptedQtPlatform(const QString& settingsFile) : QtPlatform(settingsFile) {
        messageSink().setHook([this](const Message& m) -> std::optional<Answer> {
            shown.push_back(m);
            if (m.buttons == Buttons::Ok) return Answer::Ok;
            if (answers.empty()) return safeAnswer(m.buttons);
            const Answer a = answers.front();
            answers.pop_front();
            return a;
        });
        qtDesktop().openTextFileHook = [this](const std::filesystem::path& file) {
            openedFiles.push_back(file);
            return textFilesOpen;
        };
    }

    std::vector<Message> shown;
    std::deque<Answer> answers; // questions take them in order, then the safe answer
    std::vector<std::filesystem::path> openedFiles;
    bool textFilesOpen = true;

    std::vector<std::string> texts() const {
        std::vector<std::string> out;
        for (const Message& m : shown) out.push_back(m.text);
        return out;
    }
    bool saw(const std::string& text) const {
        for (const Message& m : shown)
            if (m.text == text) return true;
        return false;
    }
};

// A temporary folder with the sample level, a work directory and a settings file.
struct SampleFolder {
    QTemporaryDir temp;
    std::filesystem::path dir, work;
    QString settingsFile;

    SampleFolder() {
        dir = std::filesystem::path(temp.path().toStdString()) / "game";
        work = std::filesystem::path(temp.path().toStdString()) / "work";
        std::filesystem::create_directories(work);
        writeSampleLevel(dir);
        settingsFile = temp.filePath(QStringLiteral("settings.ini"));
    }
    QString gameDir() const { return QString::fromStdString(dir.string()); }
    QString file(const char* name) const { return QString::fromStdString((dir / name).string()); }
};

// A main window with its own platform and settings, working in the sample folder. The window is
// not shown yet: each test shows it as it needs (at a size, as the active window).
struct WindowHarness {
    SampleFolder sample;
    ScriptedQtPlatform platform{sample.settingsFile};
    std::unique_ptr<MainForm> form;

    explicit WindowHarness(AppOptions options = {}) {
        options.workDir = sample.work;
        form = std::make_unique<MainForm>(options, platform);
    }
    // A menu entry by its control name, else another action of the window by its object name.
    QAction* action(const char* name) const {
        if (QAction* a = form->menus().action(name)) return a;
        return form->findChild<QAction*>(name);
    }
    bool enabled(const char* control) const { return form->commandEnabled(control); }
    StyleSession& session() const { return form->session(); }
    void open(const char* file = "STYLE001.G24", int option = kLoadSprites) {
        form->openStyle(sample.file(file), option);
    }
    // File > Open, the dialog worked as a user would: folder, file, option, OK.
    void openThroughDialog(const char* file, int option = kLoadSprites) {
        const QString dir = sample.gameDir();
        form->runDialog = [dir, file, option](QDialog& dialog) {
            auto* load = qobject_cast<LoadForm*>(&dialog);
            if (!load) return int(QDialog::Rejected);
            // A level the dialog cannot find leaves the open one, which the test sees.
            if (!load->setDirectory(dir) || !load->selectFile(QString::fromLatin1(file)))
                qWarning("%s was not found in the open dialog", file);
            load->setLoadOption(option);
            load->confirm();
            return load->result();
        };
        action("mnuOpen")->trigger();
    }
    // A click on the middle of a sprite on the board.
    void click(const SpriteRec& r) const {
        PageBoard* board = form->board();
        board->showPage(r.page);
        QTest::mouseClick(board->viewport(), Qt::LeftButton, {},
                          board->viewportPoint(r.page, r.xo + r.W / 2, r.yo + r.H / 2));
    }
    // The caption as the window shows it: Qt's "[*]" is "*" while there are unsaved changes.
    QString title() const {
        return form->windowTitle().replace("[*]", form->isWindowModified() ? "*" : "");
    }
    // The first sprite of a page (that has a car record, when asked).
    const SpriteRec* firstSprite(int page, bool car = false) const {
        StyleSession& s = session();
        for (int sib = 1; sib <= s.sprites.pageCount(page); ++sib) {
            const SpriteRec& r = s.sprites.pageSprites[page][sib];
            if (!car || s.cars.find(r.ASN)) return &r;
        }
        return nullptr;
    }
};

} // namespace torquil::testing
