#pragma once
// File > Build > "GC3 Car Pack": the modified style file and ENGLISH.FXT, the originals they are
// compared with (the .bak copies kept by the first save, when there are any) and the pack to
// write.

#include <QDialog>

#include <array>
#include <filesystem>

class QLineEdit;

namespace torquil {

class Platform;

class BuildCarPackForm : public QDialog {
    Q_OBJECT
public:
    enum Field { ModStyle, ModFxt, OrigStyle, OrigFxt, Pack, FieldCount };
    struct Paths {
        std::filesystem::path modStyle, modFxt, origStyle, origFxt, pack;
    };

    BuildCarPackForm(const Paths& defaults, Platform& platform, QWidget* parent = nullptr);

    [[nodiscard]] Paths paths() const;
    [[nodiscard]] QLineEdit* edit(Field field) const { return edits_[field]; }
    // Build: accepted when every file is named; otherwise says which one is missing.
    void confirm();

private:
    [[nodiscard]] QString browse(Field field);

    Platform& platform_;
    std::array<QLineEdit*, FieldCount> edits_{};
};

// The pack's default name: beside the style file, "STYLE001_CARS.GC3" for STYLE001.G24.
[[nodiscard]] std::filesystem::path defaultPackPath(const std::filesystem::path& style);

} // namespace torquil
