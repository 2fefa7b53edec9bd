#include "app/file_dialogs.h"

#include "app/picture_file_choice.h"
#include "platform/platform.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

namespace torquil {

std::string folderKey(FileKind kind) {
    switch (kind) {
    case FileKind::Sprite:
        return "Sprite";
    case FileKind::DeltaSet:
        return "DeltaSet";
    case FileKind::Sound:
        return "Sound";
    case FileKind::Dump:
        break;
    }
    return "Dump";
}

QString lastFolder(Platform& platform, FileKind kind, const QString& fallback) {
    const QString folder =
        QString::fromStdString(platform.settings().get(kFoldersSection, folderKey(kind)));
    return !folder.isEmpty() && QFileInfo(folder).isDir() ? folder : fallback;
}

void rememberFolder(Platform& platform, FileKind kind, const QString& file) {
    platform.settings().set(kFoldersSection, folderKey(kind),
                            QFileInfo(file).absolutePath().toStdString());
}

bool askReplace(Platform& platform, const QString& file, const QString& title) {
    if (!QFileInfo::exists(file)) return true;
    const std::string text =
        QDir::toNativeSeparators(file).toStdString() + " already exists.\rReplace it?";
    return platform.message(text, Buttons::YesNo, Icon::Question, title.toStdString()) ==
           Answer::Yes;
}

QString chooseFile(QWidget* parent, Platform& platform, const QString& fallbackFolder,
                   const FileRequest& request, const std::function<int(QFileDialog&)>& run) {
    // A remembered folder is kept in the settings store ("Folders", one key per kind).
    const QString folder = lastFolder(platform, request.kind, fallbackFolder);
    QFileDialog dialog(parent, request.title, folder, request.filters);
    dialog.setObjectName(QStringLiteral("fileDialog"));
    dialog.setAcceptMode(request.forSaving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(request.forSaving ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    if (!request.suggestedName.isEmpty()) dialog.selectFile(request.suggestedName);
    if (run(dialog) != QDialog::Accepted) return {};
    QString file = dialog.selectedFiles().value(0);
    if (file.isEmpty()) return {};
    if (request.forSaving) {
        if (request.defaultSuffix.isEmpty())
            file = pictureFileToWrite(file, dialog.selectedNameFilter());
        else if (QFileInfo(file).suffix().isEmpty())
            file += QLatin1Char('.') + request.defaultSuffix;
        if (!askReplace(platform, file, request.title)) return {};
    }
    rememberFolder(platform, request.kind, file);
    return file;
}

} // namespace torquil
