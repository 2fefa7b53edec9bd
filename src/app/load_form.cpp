#include "app/load_form.h"

#include "app/sample_folder.h"
#include "platform/platform.h"
#include "style/style_file.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QStorageInfo>
#include <QVBoxLayout>

#include <filesystem>

namespace torquil {

namespace fs = std::filesystem;

namespace {

const QString kParent = QStringLiteral("..");

bool isReadOnly(const fs::path& file) {
    std::error_code ec;
    const fs::perms perms = fs::status(file, ec).permissions();
    return !ec && (perms & fs::perms::owner_write) == fs::perms::none;
}

// Roots offered by the drive list: the volumes a user keeps files on, and the home folder.
QList<QPair<QString, QString>> driveRoots() {
    QList<QPair<QString, QString>> roots; // (root path, shown text)
    const QString home = QDir::homePath();
    roots.append({home, QStringLiteral("Home  (%1)").arg(QDir::toNativeSeparators(home))});
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (!volume.isValid() || !volume.isReady()) continue;
        const QString root = volume.rootPath();
        static const QStringList hidden = {"/proc", "/sys", "/dev", "/run", "/snap", "/boot"};
        bool skip = false;
        for (const QString& h : hidden)
            if (root == h || root.startsWith(h + '/')) skip = true;
        if (skip || root == home) continue;
        const QString name = volume.displayName();
        roots.append(
            {root, name == root
                       ? QDir::toNativeSeparators(root)
                       : QStringLiteral("%1  [%2]").arg(QDir::toNativeSeparators(root), name)});
    }
    return roots;
}

bool isUnder(const QString& dir, const QString& root) {
    if (root == QLatin1String("/")) return true;
    return dir == root || dir.startsWith(root.endsWith('/') ? root : root + '/');
}

} // namespace

LoadForm::LoadForm(DialogMode mode, const StyleFileState& style, Platform& platform,
                   QWidget* parent)
    : QDialog(parent), mode_(mode), style_(style), platform_(platform) {
    setObjectName(QStringLiteral("loadfrm"));
    // Form_Load: caption and pattern of the mode, then the remembered place.
    setWindowTitle(dialogCaption(mode, style));
    pattern_ = filePattern(mode, style);
    buildWidgets();
    fillDrives();
    (void)setDirectory(firstRunFolder(mode)); // the remembered folder may replace it next
    getRegSettings();
    // With a style file open, opening the next one starts beside it: another level's file of
    // the same name is then never picked by mistake.
    if (mode_ == DialogMode::Style && style_.loaded && !style_.path.empty()) {
        const QFileInfo open(QString::fromStdString(style_.path.string()));
        if (open.absoluteDir().exists() && setDirectory(open.absolutePath()))
            (void)selectFile(open.fileName()); // a file no longer there is simply not selected
    }
}

void LoadForm::buildWidgets() {
    drives_ = new QComboBox(this);
    drives_->setObjectName(QStringLiteral("Drive1"));
    pathEdit_ = new QLineEdit(this);
    pathEdit_->setObjectName(QStringLiteral("txtPath"));
    pathEdit_->setPlaceholderText(tr("Type a folder or a file, then Return"));
    pathEdit_->setToolTip(tr("The folder shown. Type a folder or a file and press Return to open "
                             "it; a name alone is looked for in the folder shown."));
    pathEdit_->installEventFilter(this);
    pathState_ = new QLabel(this);
    pathState_->setObjectName(QStringLiteral("lblPathState"));
    pathState_->setWordWrap(true);
    pathState_->hide();
    folders_ = new QListWidget(this);
    folders_->setObjectName(QStringLiteral("Dir1"));
    files_ = new QListWidget(this);
    files_->setObjectName(QStringLiteral("File1"));

    options_ = new QGroupBox(optionsFrameCaption({}), this);
    options_->setObjectName(QStringLiteral("FrameG24Options"));
    sprites_ = new QRadioButton(tr("Sprites"), options_);
    sprites_->setObjectName(QStringLiteral("butt_loadOpts0"));
    tiles_ = new QRadioButton(tr("Tiles"), options_);
    tiles_->setObjectName(QStringLiteral("butt_loadOpts1"));
    sprites_->setChecked(true);
    auto* optionRow = new QHBoxLayout(options_);
    optionRow->addWidget(sprites_);
    optionRow->addWidget(tiles_);
    optionRow->addStretch();
    options_->setEnabled(false);
    options_->setVisible(mode_ == DialogMode::Style);

    ok_ = new QPushButton(tr("OK"), this);
    ok_->setObjectName(QStringLiteral("cmdOK"));
    ok_->setDefault(true);
    auto* cancel = new QPushButton(tr("Cancel"), this);
    cancel->setObjectName(QStringLiteral("cmdCancel"));

    auto buddyLabel = [this](const QString& text, QWidget* buddy) {
        auto* label = new QLabel(text, this);
        label->setBuddy(buddy);
        return label;
    };
    auto* pathRow = new QHBoxLayout;
    pathRow->addWidget(buddyLabel(tr("&Path:"), pathEdit_));
    pathRow->addWidget(pathEdit_, 1);
    auto* grid = new QGridLayout;
    grid->addWidget(buddyLabel(tr("&Drive:"), drives_), 0, 0);
    grid->addWidget(buddyLabel(tr("F&iles (%1):").arg(pattern_), files_), 0, 1);
    grid->addWidget(drives_, 1, 0);
    grid->addWidget(files_, 1, 1, 4, 1);
    grid->addWidget(buddyLabel(tr("F&olders:"), folders_), 2, 0);
    grid->addWidget(folders_, 3, 0, 2, 1);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(4, 1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok_);
    buttons->addWidget(cancel);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(pathRow);
    layout->addWidget(pathState_);
    layout->addLayout(grid, 1);
    layout->addWidget(options_);
    layout->addLayout(buttons);
    resize(620, 420);

    connect(drives_, &QComboBox::activated, this, &LoadForm::onDriveChosen);
    connect(folders_, &QListWidget::itemActivated, this, &LoadForm::onFolderActivated);
    connect(files_, &QListWidget::itemSelectionChanged, this, &LoadForm::onFileChosen);
    connect(files_, &QListWidget::itemActivated, this, [this] { confirm(); });
    connect(ok_, &QPushButton::clicked, this, &LoadForm::confirm);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

void LoadForm::fillDrives() {
    drives_->clear();
    for (const auto& [root, text] : driveRoots()) drives_->addItem(text, root);
}

void LoadForm::syncDriveToDirectory() {
    int best = -1, bestLength = -1;
    for (int i = 0; i < drives_->count(); ++i) {
        const QString root = drives_->itemData(i).toString();
        if (isUnder(dir_, root) && root.size() > bestLength) {
            best = i;
            bestLength = static_cast<int>(root.size());
        }
    }
    if (best < 0) {
        const QString root = QStorageInfo(dir_).rootPath();
        drives_->addItem(QDir::toNativeSeparators(root), root);
        best = drives_->count() - 1;
    }
    drives_->setCurrentIndex(best);
}

QString LoadForm::drive() const {
    return drives_->currentData().toString();
}

bool LoadForm::setDirectory(const QString& dir) {
    const QDir d(dir);
    if (dir.isEmpty() || !d.exists() || !d.isReadable()) return false;
    dir_ = QDir::cleanPath(d.absolutePath());
    pathEdit_->setText(QDir::toNativeSeparators(dir_));
    pathState_->hide();
    syncDriveToDirectory();
    fillLists();
    return true;
}

void LoadForm::fillLists() {
    const QDir d(dir_);
    folders_->clear();
    if (!d.isRoot())
        new QListWidgetItem(style()->standardIcon(QStyle::SP_FileDialogToParent), kParent,
                            folders_);
    const QStringList subdirs =
        d.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase);
    for (const QString& name : subdirs) {
        auto* item = new QListWidgetItem(name, folders_);
        item->setIcon(style()->standardIcon(QStyle::SP_DirIcon));
    }

    files_->clear();
    const QStringList names = d.entryList(QDir::Files, QDir::Name | QDir::IgnoreCase);
    for (const QString& name : names)
        if (matchesFilePattern(name, pattern_)) files_->addItem(name);
    onFileChosen();
}

QStringList LoadForm::fileNames() const {
    QStringList out;
    for (int i = 0; i < files_->count(); ++i) out << files_->item(i)->text();
    return out;
}

QStringList LoadForm::folderNames() const {
    QStringList out;
    for (int i = 0; i < folders_->count(); ++i) out << folders_->item(i)->text();
    return out;
}

bool LoadForm::selectFile(const QString& name) {
    const QList<QListWidgetItem*> found = files_->findItems(name, Qt::MatchFixedString);
    if (found.isEmpty()) return false;
    files_->setCurrentItem(found.first());
    return true;
}

QString LoadForm::selectedFile() const {
    const QListWidgetItem* item = files_->currentItem();
    return item && item->isSelected() ? item->text() : QString();
}

int LoadForm::loadOption() const {
    return tiles_->isChecked() ? kLoadTiles : kLoadSprites;
}

void LoadForm::setLoadOption(int option) {
    (option == kLoadTiles ? tiles_ : sprites_)->setChecked(true);
}

QString LoadForm::optionsCaption() const {
    return options_->title();
}
bool LoadForm::optionsEnabled() const {
    return options_->isEnabled();
}

void LoadForm::onDriveChosen(int index) {
    const QString root = drives_->itemData(index).toString();
    if (!setDirectory(root)) syncDriveToDirectory(); // unreadable: stay where we are
}

void LoadForm::onFolderActivated(QListWidgetItem* item) {
    if (!item) return;
    const QString target =
        item->text() == kParent ? QDir(dir_).filePath(kParent) : QDir(dir_).filePath(item->text());
    (void)setDirectory(target); // a folder that cannot be listed leaves the list as it was
}

void LoadForm::onFileChosen() {
    const QString name = selectedFile();
    if (mode_ != DialogMode::Style) return;
    options_->setTitle(optionsFrameCaption(name));
    options_->setEnabled(!name.isEmpty());
}

void LoadForm::getRegSettings() {
    const std::string section = settingsSection(mode_).toStdString();
    const QString drive = QString::fromStdString(platform_.settings().get(section, "Drive"));
    const QString dir = QString::fromStdString(platform_.settings().get(section, "Dir"));
    const QString file = QString::fromStdString(platform_.settings().get(section, "File"));
    if (!drive.isEmpty() && dir.isEmpty())
        (void)setDirectory(drive); // the first run's folder stays
    if (!dir.isEmpty() && !setDirectory(dir)) {
        platform_.message("Unable to access previously used directory:" + dir.toStdString());
        return;
    }
    if (!file.isEmpty()) (void)selectFile(file); // a file no longer there is simply not selected
}

void LoadForm::saveRegSettings() {
    const std::string section = settingsSection(mode_).toStdString();
    platform_.settings().set(section, "Drive", drive().toStdString());
    platform_.settings().set(section, "Dir", dir_.toStdString());
    platform_.settings().set(section, "File", selectedFile().toStdString());
}

void LoadForm::confirm() {
    const QString name = selectedFile();
    if (!name.isEmpty()) {
        const QString full = QDir(dir_).filePath(name);
        if (mode_ == DialogMode::Style) {
            const fs::path file(full.toStdString());
            if (isReadOnly(file)) {
                platform_.message("This file is set to be Read Only, this will be removed so you "
                                  "can save changes.",
                                  Buttons::Ok, Icon::Information);
                std::error_code ec;
                fs::permissions(file, fs::perms::owner_write, fs::perm_options::add, ec);
            }
            chosenPath_ = full;
        } else {
            chosenPath_ = full; // a bitmap to import or a car pack to apply
        }
    }
    saveRegSettings();
    accept();
}

QString LoadForm::firstRunFolder(DialogMode mode) {
    if (mode == DialogMode::Style) {
        const QString sample =
            sampleFolderBeside(QCoreApplication::applicationDirPath(), QDir::currentPath());
        if (!sample.isEmpty()) return sample;
    }
    return QDir::currentPath();
}

QString LoadForm::pathState() const {
    return pathState_->isHidden() ? QString() : pathState_->text();
}

bool LoadForm::eventFilter(QObject* watched, QEvent* event) {
    if (watched == pathEdit_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            // Taken here, so the dialog's default button does not also confirm.
            (void)openTypedPath(); // a path that does not open has said why
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

bool LoadForm::openTypedPath() {
    QString typed = QDir::fromNativeSeparators(pathEdit_->text().trimmed());
    if (typed == QLatin1String("~") || typed.startsWith(QLatin1String("~/")))
        typed = QDir::homePath() + typed.mid(1);
    const QFileInfo target(QDir(dir_).filePath(typed)); // an absolute path stays as it is
    auto refuse = [this](const QString& why) {
        pathState_->setText(why);
        pathState_->show();
        return false;
    };
    if (typed.isEmpty() || (target.isDir() && QDir::cleanPath(target.absoluteFilePath()) == dir_)) {
        // The field names the folder shown: Return opens the file selected in it.
        if (selectedFile().isEmpty())
            return refuse(tr("Choose a file in the list or type its name."));
        confirm();
        return true;
    }
    if (target.isDir()) {
        if (!setDirectory(target.absoluteFilePath()))
            return refuse(tr("The folder %1 cannot be read.")
                              .arg(QDir::toNativeSeparators(target.absoluteFilePath())));
        return true;
    }
    if (!target.exists())
        return refuse(tr("There is no file or folder %1.")
                          .arg(QDir::toNativeSeparators(target.absoluteFilePath())));
    if (!setDirectory(target.absolutePath()))
        return refuse(tr("The folder %1 cannot be read.")
                          .arg(QDir::toNativeSeparators(target.absolutePath())));
    if (!selectFile(target.fileName())) {
        pathEdit_->setText(QDir::toNativeSeparators(target.absoluteFilePath()));
        return refuse(
            tr("%1 is not a file this dialog opens (%2).").arg(target.fileName(), pattern_));
    }
    confirm();
    return true;
}

} // namespace torquil
