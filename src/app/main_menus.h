#pragma once
// The main form's menu tree. Every entry is a QAction named after its control (mnuOpen,
// mnuExportDeltas0, ...); submenus are named on both the QMenu and its menu action.

#include <QHash>
#include <QString>

class QAction;
class QMenu;
class QMenuBar;

namespace torquil {

class MainMenus {
public:
    // Fills the menu bar; the actions are children of their menus.
    explicit MainMenus(QMenuBar* bar);

    // The entry or submenu action of a control name; nullptr when there is none.
    [[nodiscard]] QAction* action(const QString& name) const {
        return actions_.value(name, nullptr);
    }
    [[nodiscard]] QMenu* menu(const QString& name) const { return menus_.value(name, nullptr); }
    [[nodiscard]] const QHash<QString, QAction*>& actions() const { return actions_; }

private:
    QHash<QString, QAction*> actions_;
    QHash<QString, QMenu*> menus_;
};

} // namespace torquil
