#include "app/picture_file_choice.h"

#include "exchange/png_codec.h"

#include <QFileInfo>

namespace torquil {

QString pictureFileFilters() {
    QString filters = QString::fromLatin1(kBitmapFilter);
    if (pngSupported()) filters += QStringLiteral(";;") + QString::fromLatin1(kPngFilter);
    return filters;
}

QString pictureFileToWrite(const QString& typed, const QString& chosenFilter) {
    if (typed.isEmpty()) return typed;
    const QString suffix = QFileInfo(typed).suffix().toLower();
    if (suffix == QLatin1String("bmp") || suffix == QLatin1String("png")) return typed;
    const bool png = pngSupported() && chosenFilter == QLatin1String(kPngFilter);
    return typed + (png ? QStringLiteral(".png") : QStringLiteral(".bmp"));
}

} // namespace torquil
