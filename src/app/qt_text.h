#pragma once
// The core's texts in the window: UTF-8 texts of our own, and the game's single-byte car names.

#include <QString>

#include <string>
#include <string_view>

namespace torquil {

// A text of the core (messages, captions): UTF-8.
[[nodiscard]] inline QString qs(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// Car names are the game's single-byte text.
[[nodiscard]] inline QString fromGameText(const std::string& text) {
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}
[[nodiscard]] inline std::string toGameText(const QString& text) {
    return text.toLatin1().toStdString();
}

} // namespace torquil
