#include "platform/qt/qt_platform.h"

namespace torquil {

QtPlatform::QtPlatform(const QString& settingsFile)
    : working_(std::make_unique<WorkingForm>()), progress_(*working_), settings_(settingsFile) {
    // The form's pump is the paced one: a form shown for every page must not run the event
    // loop for every page.
    working_->letEventsRun = [this] { desktop_.processEvents(); };
}

QtPlatform::~QtPlatform() = default;

void QtPlatform::setParentWindow(QWidget* window) {
    messages_.setParentWindow(window);
    working_->setOwnerWindow(window);
}

} // namespace torquil
