#pragma once
// The platform of the Qt application: message boxes, the progress form, the details log,
// QSettings, sound through Qt Multimedia and the desktop services.

#include "platform/platform.h"
#include "platform/qt/details_log.h"
#include "platform/qt/qt_desktop.h"
#include "platform/qt/qt_message_sink.h"
#include "platform/qt/qt_settings_store.h"
#include "platform/qt/qt_sound_player.h"
#include "platform/qt/working_form.h"

#include <QString>

#include <memory>

class QWidget;

namespace torquil {

class QtPlatform : public Platform {
public:
    // settingsFile empty: the per-user store of the organisation and application "Torquil";
    // otherwise an INI file at that path (tests use a temporary one).
    explicit QtPlatform(const QString& settingsFile = {});
    ~QtPlatform() override;

    MessageSink& messages() override { return messages_; }
    ProgressSink& progress() override { return progress_; }
    DetailsSink& details() override { return details_; }
    SettingsStore& settings() override { return settings_; }
    SoundPlayer& sound() override { return sound_; }
    Desktop& desktop() override { return desktop_; }

    QtMessageSink& messageSink() { return messages_; }
    WorkingForm& workingForm() { return *working_; }
    DetailsLog& detailsLog() { return details_; }
    QtSettingsStore& settingsStore() { return settings_; }
    QtDesktop& qtDesktop() { return desktop_; }
    QtSoundPlayer& qtSound() { return sound_; }

    // The window that message boxes and the progress form belong to.
    void setParentWindow(QWidget* window);

private:
    QtMessageSink messages_;
    std::unique_ptr<WorkingForm> working_;
    WorkingProgress progress_;
    DetailsLog details_;
    QtSettingsStore settings_;
    QtSoundPlayer sound_;
    QtDesktop desktop_;
};

} // namespace torquil
