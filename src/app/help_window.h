#pragma once
// The help window: the program's manual (built in as a resource) in a text browser, opened at the
// topic of the place the user asked from, and the Read Me file shown as plain text.

#include <QString>

#include <QWidget>
#include <string>

class QTextBrowser;

namespace torquil {

// Help contexts beside the car editor's pages (100 + page).
inline constexpr int kPaletteHelpContext = 200; // the palette questions of an import

// The manual's anchor for a help context: 0 the contents, 100 + page the car editor's pages,
// kPaletteHelpContext the palette questions.
[[nodiscard]] QString helpAnchor(int context);
// The help context of a message box's Help button, by the box's title ("Palette Change");
// 0 (the contents) for any other.
[[nodiscard]] int helpContextOfMessage(const std::string& title);

class HelpWindow : public QWidget {
    Q_OBJECT
public:
    explicit HelpWindow(QWidget* parent = nullptr);

    // Shows the manual scrolled to an anchor ("" : its top); false when the manual is missing.
    [[nodiscard]] bool showManual(const QString& anchor = {});
    // Shows a text file (the Read Me); false when it cannot be read.
    [[nodiscard]] bool showTextFile(const QString& path);

    [[nodiscard]] QTextBrowser* browser() const { return browser_; }
    // The anchor last asked for ("" for the top or a text file).
    [[nodiscard]] QString anchor() const { return anchor_; }

private:
    QTextBrowser* browser_ = nullptr;
    QString anchor_;
    bool manualLoaded_ = false; // false while nothing or the Read Me is shown
};

} // namespace torquil
