#pragma once
// The picture formats the window's file dialogs offer for delta sets, and the file an answer of
// such a dialog names.

#include <QString>

namespace torquil {

inline constexpr const char* kBitmapFilter = "Bitmap (*.bmp)";
inline constexpr const char* kPngFilter = "PNG (*.png)";

// What a picture file dialog answered: the file (empty when cancelled) and the chosen filter.
struct PictureFileAnswer {
    QString file, filter;
};

// "Bitmap (*.bmp)" first, the dialog's default, then "PNG (*.png)" when this build reads and
// writes PNG pictures.
[[nodiscard]] QString pictureFileFilters();

// The file to write for a dialog's answer: a typed ".bmp" or ".png" (any case) decides the
// format; without one, the extension of the chosen filter is added (".png" for the PNG filter,
// else ".bmp"). An empty answer (the dialog was cancelled) stays empty.
[[nodiscard]] QString pictureFileToWrite(const QString& typed, const QString& chosenFilter);

} // namespace torquil
