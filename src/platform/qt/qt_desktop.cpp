#include "platform/qt/qt_desktop.h"

#include <QApplication>
#include <QCursor>
#include <QDesktopServices>
#include <QUrl>

namespace torquil {

void QtDesktop::setBusy(bool busy) {
    // Nested busy scopes: only the outermost one sets and restores the pointer.
    if (busy) {
        if (busyDepth_++ == 0) QApplication::setOverrideCursor(Qt::WaitCursor);
    } else if (busyDepth_ > 0 && --busyDepth_ == 0) {
        QApplication::restoreOverrideCursor();
    }
}

void QtDesktop::processEvents() {
    if (events_.takeTurn()) QCoreApplication::processEvents();
}

bool QtDesktop::openTextFile(const std::filesystem::path& file) {
    if (openTextFileHook) return openTextFileHook(file);
    std::error_code ec;
    if (!std::filesystem::is_regular_file(file, ec)) return false;
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(file.string())));
}

} // namespace torquil
