#include "app/paint_watch.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTimer>
#include <QUrl>

namespace torquil {

namespace {

QString qtPath(const std::filesystem::path& path) {
    return QDir::cleanPath(QString::fromStdString(path.string()));
}

} // namespace

PaintWatch::PaintWatch(QObject* parent) : QObject(parent) {
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, &PaintWatch::fileTouched);
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, &PaintWatch::folderTouched);
}

void PaintWatch::watch(const PaintTarget& target) {
    const QString file = qtPath(target.file);
    auto found = entries_.find(file);
    if (found == entries_.end()) {
        Entry entry;
        entry.timer = new QTimer(this);
        entry.timer->setSingleShot(true);
        connect(entry.timer, &QTimer::timeout, this, [this, file] { quiet(file); });
        found = entries_.emplace(file, entry).first;
    }
    found->second.target = target;
    found->second.last = paintedVersion(target.file);
    found->second.timer->stop();
    if (!watcher_.files().contains(file)) watcher_.addPath(file);
    const QString folder = QFileInfo(file).absolutePath();
    if (!watcher_.directories().contains(folder)) watcher_.addPath(folder);
}

void PaintWatch::clear() {
    for (auto& [file, entry] : entries_) delete entry.timer;
    entries_.clear();
    if (!watcher_.files().isEmpty()) watcher_.removePaths(watcher_.files());
    if (!watcher_.directories().isEmpty()) watcher_.removePaths(watcher_.directories());
}

void PaintWatch::settle(const QString& file) {
    auto found = entries_.find(QDir::cleanPath(file));
    if (found != entries_.end()) found->second.last = paintedVersion(found->second.target.file);
}

bool PaintWatch::hasNewVersion(const QString& file) const {
    auto found = entries_.find(QDir::cleanPath(file));
    if (found == entries_.end()) return false;
    const PaintedVersion now = paintedVersion(found->second.target.file);
    return now.exists && now.length > 0 && now != found->second.last;
}

const PaintTarget* PaintWatch::target(const QString& file) const {
    auto found = entries_.find(QDir::cleanPath(file));
    return found == entries_.end() ? nullptr : &found->second.target;
}

QStringList PaintWatch::files() const {
    QStringList out;
    for (const auto& [file, entry] : entries_) out << file;
    return out;
}

void PaintWatch::fileTouched(const QString& file) {
    auto found = entries_.find(QDir::cleanPath(file));
    if (found == entries_.end()) return;
    // A replace by rename drops the path from the watcher: take the new file up again.
    if (!watcher_.files().contains(found->first) && QFileInfo::exists(found->first))
        watcher_.addPath(found->first);
    found->second.timer->start(quietMs);
}

void PaintWatch::folderTouched(const QString& folder) {
    const QString clean = QDir::cleanPath(folder);
    for (auto& [file, entry] : entries_) {
        if (QFileInfo(file).absolutePath() != clean) continue;
        if (!QFileInfo::exists(file)) continue;
        if (!watcher_.files().contains(file)) watcher_.addPath(file);
        // Any change in the folder may be a save of this picture under a side name: look again
        // once it is quiet (an unchanged file is not reported).
        entry.timer->start(quietMs);
    }
}

void PaintWatch::quiet(const QString& file) {
    auto found = entries_.find(file);
    if (found == entries_.end()) return;
    const PaintedVersion now = paintedVersion(found->second.target.file);
    if (!now.exists || now.length <= 0 || now == found->second.last) return;
    emit changed(file);
}

bool openInPaintProgram(const QString& program, const QString& file, QString& why) {
    const QString trimmed = program.trimmed();
    if (trimmed.isEmpty()) {
        if (QDesktopServices::openUrl(QUrl::fromLocalFile(file))) return true;
        why = QObject::tr("No program is set to open pictures on this desktop; choose one under "
                          "Edit > Settings.");
        return false;
    }
    // A program file as it is (its path may hold spaces), else a command line and its arguments.
    QString executable = trimmed;
    QStringList arguments;
    if (!QFileInfo(trimmed).isFile()) {
        arguments = QProcess::splitCommand(trimmed);
        executable = arguments.isEmpty() ? QString() : arguments.takeFirst();
    }
    arguments << QDir::toNativeSeparators(file);
    if (!executable.isEmpty() && QProcess::startDetached(executable, arguments)) return true;
    why = QObject::tr("The paint program could not be started: %1").arg(trimmed);
    return false;
}

} // namespace torquil
