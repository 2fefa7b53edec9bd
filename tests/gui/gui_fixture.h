#pragma once
// What the window tests share: a Qt platform whose message boxes answer from a script and are
// recorded, a settings file of their own, and the sample level in a temporary folder.

#include "platform/qt/qt_platform.h"
#include "sample_level.h"

#include <QString>
#include <QTemporaryDir>

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

} // namespace torquil::testing
