#pragma once
// The status bar's word after an export: where the file went, and an "Open Folder" button that
// shows that folder in the system's file manager.

#include <QWidget>

#include <functional>

class QLabel;
class QPushButton;

namespace torquil {

class ExportNotice : public QWidget {
    Q_OBJECT
public:
    explicit ExportNotice(QWidget* parent = nullptr);

    // "<what> exported to <file>" and the button; the file is kept for the button.
    void showExport(const QString& what, const QString& file);
    // Any text about files written into `folder` (the dumps of a load), and the button.
    void showWritten(const QString& text, const QString& folder);
    [[nodiscard]] QString file() const { return file_; } // empty after showWritten
    [[nodiscard]] QString folder() const { return folder_; }
    // The whole text; the label shows it shortened in the middle when the status bar is narrow.
    [[nodiscard]] QString text() const { return fullText_; }
    [[nodiscard]] QPushButton* openFolderButton() const { return openFolder_; }

    // Opens a folder in the file manager (QDesktopServices unless replaced; tests record it).
    std::function<void(const QString& folder)> openFolder;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void showText();

    QString fullText_;
    QLabel* text_ = nullptr;
    QPushButton* openFolder_ = nullptr;
    QString file_, folder_;
};

} // namespace torquil
