#include "platform/qt/details_log.h"

namespace torquil {

void DetailsLog::append(const std::string& line) {
    const QString text = QString::fromStdString(line);
    lines_.append(text);
    emit lineAppended(text);
}

void DetailsLog::clear() {
    lines_.clear();
    emit cleared();
}

} // namespace torquil
