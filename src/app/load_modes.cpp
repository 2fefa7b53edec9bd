#include "app/load_modes.h"

#include "style/level_name.h"
#include "style/style_file.h"

#include <QRegularExpression>
#include <QStringList>

namespace torquil {

QString dialogCaption(DialogMode mode, const StyleFileState& style) {
    switch (mode) {
    case DialogMode::Style:
        return QStringLiteral("Load G24,GRY Style File");
    case DialogMode::Bitmap:
        return QStringLiteral("Load BMP ") + QString::fromStdString(mapName(style.gMapNumber)) +
               QString::fromStdString(loadOptionText(style.loadOption));
    case DialogMode::CarPack:
        return QStringLiteral("Load Car Pack File");
    }
    return {};
}

QString filePattern(DialogMode mode, const StyleFileState& style) {
    switch (mode) {
    case DialogMode::Style:
        return QStringLiteral("*.GRY;*.G24");
    case DialogMode::Bitmap: {
        const QString level = QString::number(style.gMapNumber);
        if (style.loadOption == kLoadTiles) return QStringLiteral("KRBTIL") + level + "*.BMP";
        return QStringLiteral("KRBSPR") + level + "*.BMP;CAR" + level + "*.BMP;C_CAR" + level +
               "*.BMP";
    }
    case DialogMode::CarPack:
        return QStringLiteral("*.GC3");
    }
    return {};
}

QString settingsSection(DialogMode mode) {
    switch (mode) {
    case DialogMode::Style:
        return QStringLiteral("Style");
    case DialogMode::Bitmap:
        return QStringLiteral("BMP");
    case DialogMode::CarPack:
        return QStringLiteral("GC3");
    }
    return {};
}

QString optionsFrameCaption(const QString& fileName) {
    if (fileName.isEmpty()) return QStringLiteral("-Load Options:");
    const std::string upper = toUpperAscii(fileName.toStdString());
    return QString::fromStdString(mapName(mapNumberFromFileName(upper)) +
                                  bitDepthText(isG24FileName(upper))) +
           QStringLiteral("-Load Options:");
}

bool matchesFilePattern(const QString& fileName, const QString& pattern) {
    const QStringList parts = pattern.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        const QRegularExpression re(QRegularExpression::wildcardToRegularExpression(part.trimmed()),
                                    QRegularExpression::CaseInsensitiveOption);
        if (re.match(fileName).hasMatch()) return true;
    }
    return false;
}

} // namespace torquil
