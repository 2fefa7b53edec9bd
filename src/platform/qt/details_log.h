#pragma once
// The lines that loaders and savers send to the details window. The log keeps them while the
// window is hidden; the window listens for new ones.

#include "platform/platform.h"

#include <QObject>
#include <QString>
#include <QStringList>

namespace torquil {

class DetailsLog : public QObject, public DetailsSink {
    Q_OBJECT
public:
    void append(const std::string& line) override;
    [[nodiscard]] const QStringList& lines() const { return lines_; }
    void clear();

signals:
    void lineAppended(const QString& line);
    void cleared();

private:
    QStringList lines_;
};

} // namespace torquil
