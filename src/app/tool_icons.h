#pragma once
// Flat toolbar icons drawn with QPainter, one per toolbar key.

#include <QIcon>
#include <QString>

namespace torquil {

[[nodiscard]] QIcon toolIcon(const QString& key);

} // namespace torquil
