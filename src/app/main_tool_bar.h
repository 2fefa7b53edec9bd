#pragma once
// The main form's toolbar: eleven buttons identified by their keys. Places, 1-based with the
// separators counted: 2 open, 3 save, 5 loadbmp, 6 loadgc3, 8 carinfo, 9 find, 11 exportsprite,
// 12 importsprite, 14 exportdeltasdirty, 16 exportdeltasclean, 17 importdeltas.

#include <QHash>
#include <QString>
#include <QStringList>
#include <QToolBar>

namespace torquil {

class MainToolBar : public QToolBar {
    Q_OBJECT
public:
    explicit MainToolBar(QWidget* parent = nullptr);

    // The keys of the buttons, left to right.
    [[nodiscard]] static const QStringList& keys();
    [[nodiscard]] QAction* button(const QString& key) const { return buttons_.value(key, nullptr); }

signals:
    // A button was pressed: the key names the command, as in the key table.
    void keyPressed(const QString& key);

private:
    QHash<QString, QAction*> buttons_;
};

} // namespace torquil
