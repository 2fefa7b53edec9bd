#include "app/build_car_pack_form.h"

#include "platform/platform.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace torquil {

namespace fs = std::filesystem;

namespace {

struct FieldText {
    const char* label;
    const char* object;
    const char* filter;
};

constexpr std::array<FieldText, BuildCarPackForm::FieldCount> kFields{{
    {"Style file:", "modStyle", "Style files (*.G24 *.GRY *.g24 *.gry)"},
    {"ENGLISH.FXT:", "modFxt", "Text files (*.FXT *.fxt)"},
    {"Style file:", "origStyle", "Style files and copies (*.G24 *.GRY *.bak *.g24 *.gry)"},
    {"ENGLISH.FXT:", "origFxt", "Text files and copies (*.FXT *.bak *.fxt)"},
    {"Pack:", "pack", "Car packs (*.GC3 *.gc3)"},
}};

QString text(const fs::path& path) {
    return QString::fromStdString(path.string());
}

} // namespace

fs::path defaultPackPath(const fs::path& style) {
    return style.parent_path() / (style.stem().string() + "_CARS.GC3");
}

BuildCarPackForm::BuildCarPackForm(const Paths& defaults, Platform& platform, QWidget* parent)
    : QDialog(parent), platform_(platform) {
    setObjectName(QStringLiteral("buildCarPack"));
    setWindowTitle(QStringLiteral("GC3 Car Pack"));
    const fs::path initial[] = {defaults.modStyle, defaults.modFxt, defaults.origStyle,
                                defaults.origFxt, defaults.pack};

    auto row = [this, &initial](QGridLayout* grid, int r, Field f) {
        auto* label = new QLabel(QString::fromLatin1(kFields[f].label));
        auto* edit = new QLineEdit(text(initial[f]));
        edit->setObjectName(QString::fromLatin1(kFields[f].object));
        edit->setMinimumWidth(380);
        label->setBuddy(edit);
        auto* pick = new QPushButton(QStringLiteral("..."));
        pick->setObjectName(QString::fromLatin1(kFields[f].object) + QStringLiteral("Browse"));
        pick->setFixedWidth(32);
        connect(pick, &QPushButton::clicked, this, [this, f, edit] {
            const QString chosen = browse(f);
            if (!chosen.isEmpty()) edit->setText(chosen);
        });
        grid->addWidget(label, r, 0);
        grid->addWidget(edit, r, 1);
        grid->addWidget(pick, r, 2);
        edits_[f] = edit;
    };

    auto* changed = new QGroupBox(QStringLiteral("Your changed files"), this);
    auto* changedGrid = new QGridLayout(changed);
    row(changedGrid, 0, ModStyle);
    row(changedGrid, 1, ModFxt);

    auto* originals = new QGroupBox(QStringLiteral("The files as they were"), this);
    auto* originalsGrid = new QGridLayout(originals);
    row(originalsGrid, 0, OrigStyle);
    row(originalsGrid, 1, OrigFxt);
    auto* note = new QLabel(
        QStringLiteral("The .bak copies that Torquil kept before it first saved the level are "
                       "used when they exist; otherwise choose the unchanged files."),
        originals);
    note->setWordWrap(true);
    originalsGrid->addWidget(note, 2, 0, 1, 3);

    auto* output = new QGroupBox(QStringLiteral("Car pack to write"), this);
    auto* outputGrid = new QGridLayout(output);
    row(outputGrid, 0, Pack);

    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(QStringLiteral("Build"), QDialogButtonBox::AcceptRole)
        ->setObjectName(QStringLiteral("build"));
    buttons->addButton(QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &BuildCarPackForm::confirm);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(changed);
    layout->addWidget(originals);
    layout->addWidget(output);
    layout->addWidget(buttons);
}

BuildCarPackForm::Paths BuildCarPackForm::paths() const {
    auto path = [this](Field f) { return fs::path(edits_[f]->text().trimmed().toStdString()); };
    return {path(ModStyle), path(ModFxt), path(OrigStyle), path(OrigFxt), path(Pack)};
}

void BuildCarPackForm::confirm() {
    static const char* const names[] = {"the changed style file", "the changed ENGLISH.FXT",
                                        "the original style file", "the original ENGLISH.FXT",
                                        "the car pack to write"};
    for (int f = 0; f < FieldCount; ++f) {
        if (edits_[f]->text().trimmed().isEmpty()) {
            platform_.message(std::string("Please choose ") + names[f] + ".", Buttons::Ok,
                              Icon::Warning);
            edits_[f]->setFocus();
            return;
        }
    }
    accept();
}

QString BuildCarPackForm::browse(Field f) {
    const QString current = edits_[f]->text();
    const QString filter =
        QString::fromLatin1(kFields[f].filter) + QStringLiteral(";;All files (*)");
    if (f == Pack)
        return QFileDialog::getSaveFileName(this, QStringLiteral("Car pack"), current, filter);
    return QFileDialog::getOpenFileName(this, QString::fromLatin1(kFields[f].label).chopped(1),
                                        current, filter);
}

} // namespace torquil
