#include "app/help_window.h"

#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QScrollBar>
#include <QTextBrowser>
#include <QToolBar>
#include <QUrl>
#include <QVBoxLayout>

#include <array>

// The resource lives in the application library: it has to be brought in by name.
static void initHelpResource() {
    Q_INIT_RESOURCE(help);
}

namespace torquil {

namespace {
// The car editor's pages in tab order, as the manual names their sections.
constexpr std::array<const char*, 8> kEditorPages = {
    "editor-sprite", "editor-doors", "editor-specs", "editor-physics",
    "editor-steer",  "editor-brake", "editor-sound", "editor-remap"};
} // namespace

QString helpAnchor(int context) {
    if (context == kPaletteHelpContext) return QStringLiteral("palette");
    const int page = context - 100;
    if (page >= 0 && page < static_cast<int>(kEditorPages.size()))
        return QString::fromLatin1(kEditorPages[static_cast<std::size_t>(page)]);
    return QStringLiteral("contents");
}

int helpContextOfMessage(const std::string& title) {
    return title == "Palette Change" ? kPaletteHelpContext : 0;
}

HelpWindow::HelpWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
    initHelpResource();
    setObjectName(QStringLiteral("helpFrm"));
    setWindowTitle(tr("Torquil Help"));
    browser_ = new QTextBrowser(this);
    browser_->setObjectName(QStringLiteral("txtHelp"));
    browser_->setOpenExternalLinks(true);

    auto* bar = new QToolBar(this);
    bar->addAction(tr("Contents"), this, [this] { showManual(QStringLiteral("contents")); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(bar);
    layout->addWidget(browser_, 1);
    resize(760, 620);
}

bool HelpWindow::showManual(const QString& anchor) {
    if (!manualLoaded_) {
        QFile manual(QStringLiteral(":/torquil/help/manual.html"));
        if (!manual.open(QIODevice::ReadOnly)) return false;
        browser_->document()->setDefaultFont(font());
        // The manual's pictures (screenshots/...) live beside it in the resources.
        browser_->document()->setBaseUrl(QUrl(QStringLiteral("qrc:/torquil/help/")));
        browser_->setHtml(QString::fromUtf8(manual.readAll()));
        manualLoaded_ = true;
    }
    anchor_ = anchor;
    if (anchor.isEmpty())
        browser_->verticalScrollBar()->setValue(0);
    else
        browser_->scrollToAnchor(anchor);
    setWindowTitle(tr("Torquil Help"));
    return true;
}

bool HelpWindow::showTextFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return false;
    anchor_.clear();
    manualLoaded_ = false;
    browser_->document()->setDefaultFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    browser_->setPlainText(QString::fromUtf8(file.readAll()));
    setWindowTitle(QFileInfo(path).fileName());
    return true;
}

} // namespace torquil
