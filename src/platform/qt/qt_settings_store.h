#pragma once
// The per-user settings store on QSettings: section and key become "Section/Key".

#include "platform/platform.h"

#include <QSettings>
#include <QString>

#include <memory>

namespace torquil {

class QtSettingsStore : public SettingsStore {
public:
    // file empty: the native store of organisation and application "Torquil"; else an INI file.
    explicit QtSettingsStore(const QString& file = {});

    [[nodiscard]] std::string get(const std::string& section, const std::string& key) override;
    void set(const std::string& section, const std::string& key, const std::string& value) override;

    // The same store for the window's own state (size, zoom).
    QSettings& qsettings() { return *settings_; }

private:
    std::unique_ptr<QSettings> settings_;
};

} // namespace torquil
