#include "app/bitmap_names.h"

#include <QRegularExpression>

namespace torquil {

std::optional<BitmapTarget> bitmapTarget(const QString& fileName, int level) {
    static const QRegularExpression re(
        QStringLiteral("^(KRBSPR|KRBTIL|CAR|C_CAR)(\\d+)_(\\d+)\\.BMP$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch m = re.match(fileName);
    if (!m.hasMatch() || m.captured(2).toInt() != level) return std::nullopt;
    bool ok = false;
    const int number = m.captured(3).toInt(&ok);
    if (!ok) return std::nullopt;
    const QString prefix = m.captured(1).toUpper();
    const BitmapTarget::Kind kind = prefix == QLatin1String("KRBSPR")   ? BitmapTarget::Sprite
                                    : prefix == QLatin1String("KRBTIL") ? BitmapTarget::Tile
                                                                        : BitmapTarget::Car;
    return BitmapTarget{kind, number};
}

} // namespace torquil
