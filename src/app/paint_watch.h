#pragma once
// The pictures handed to a paint program, watched on disk: one entry per picture, so several
// sprites can be out at once. A change is reported once the file has been quiet for a moment (a
// paint program writes in bursts), and only when its bytes differ from the version last written
// or offered. A save by writing a new file and renaming it over the old one drops the file from
// the watcher: its folder is watched too, and the file is taken up again when it reappears.

#include "session/paint_edit.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QStringList>

#include <map>

class QTimer;

namespace torquil {

class PaintWatch : public QObject {
    Q_OBJECT
public:
    explicit PaintWatch(QObject* parent = nullptr);

    // Watches a picture just written; its version now is not offered.
    void watch(const PaintTarget& target);
    // Forgets every picture (another style was opened: its sprites are not these).
    void clear();
    // The version on disk now was offered (taken or not): the next change is a new one.
    void settle(const QString& file);
    // The picture on disk differs from the version last written or offered.
    bool hasNewVersion(const QString& file) const;
    // The picture's entry; nullptr when it is not watched.
    const PaintTarget* target(const QString& file) const;
    QStringList files() const;

    // How long a file must be quiet before its change is reported.
    int quietMs = 300;

signals:
    // A watched picture has a new version on disk.
    void changed(const QString& file);

private:
    struct Entry {
        PaintTarget target;
        PaintedVersion last;
        QTimer* timer = nullptr;
    };
    void fileTouched(const QString& file);
    void folderTouched(const QString& folder);
    void quiet(const QString& file);

    QFileSystemWatcher watcher_;
    std::map<QString, Entry> entries_;
};

// The program that edits pictures, from the settings ("Paint" / "Program"); empty: the desktop's
// default program for pictures.
inline constexpr const char* kPaintSection = "Paint";
inline constexpr const char* kPaintProgramKey = "Program";

// Opens `file` in `program` (a program file, or a command line to which the file is added), or
// in the desktop's default program for pictures when `program` is empty. False when it could not
// be started; `why` then says so for the user.
[[nodiscard]] bool openInPaintProgram(const QString& program, const QString& file, QString& why);

} // namespace torquil
