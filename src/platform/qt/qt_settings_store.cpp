#include "platform/qt/qt_settings_store.h"

namespace torquil {

namespace {
QString settingKey(const std::string& section, const std::string& key) {
    return QString::fromStdString(section) + QLatin1Char('/') + QString::fromStdString(key);
}
} // namespace

QtSettingsStore::QtSettingsStore(const QString& file)
    : settings_(file.isEmpty() ? std::make_unique<QSettings>(QStringLiteral("Torquil"),
                                                             QStringLiteral("Torquil"))
                               : std::make_unique<QSettings>(file, QSettings::IniFormat)) {}

std::string QtSettingsStore::get(const std::string& section, const std::string& key) {
    return settings_->value(settingKey(section, key), QString()).toString().toStdString();
}

void QtSettingsStore::set(const std::string& section, const std::string& key,
                          const std::string& value) {
    settings_->setValue(settingKey(section, key), QString::fromStdString(value));
    settings_->sync();
}

} // namespace torquil
