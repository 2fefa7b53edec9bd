#include "platform/qt/qt_platform.h"

namespace torquil {

QtPlatform::QtPlatform(const QString& settingsFile)
    : working_(std::make_unique<WorkingForm>()), progress_(*working_), settings_(settingsFile) {}

QtPlatform::~QtPlatform() = default;

void QtPlatform::setParentWindow(QWidget* window) {
    messages_.setParentWindow(window);
    working_->setOwnerWindow(window);
}

} // namespace torquil
