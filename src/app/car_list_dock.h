#pragma once
// The car list: a dockable table of every loaded car, sortable by any column, filtered by name,
// edited in place with the car editor's limits. Choosing a row selects the car on the board.

#include <QDockWidget>

class QLabel;
class QLineEdit;
class QSortFilterProxyModel;
class QTableView;

namespace torquil {

class CarListModel;
class StyleSession;

class CarListDock : public QDockWidget {
    Q_OBJECT
public:
    explicit CarListDock(QWidget* parent = nullptr);

    void setSession(StyleSession* session);
    void refresh();
    // Moves the current row to a car (no signal); false when the car is not listed.
    [[nodiscard]] bool showCar(int asn);

    [[nodiscard]] CarListModel* model() const { return model_; }
    [[nodiscard]] QSortFilterProxyModel* proxy() const { return proxy_; }
    [[nodiscard]] QTableView* table() const { return table_; }
    [[nodiscard]] QLineEdit* filterBox() const { return filter_; }
    [[nodiscard]] QLabel* reportLabel() const { return report_; }

signals:
    void carChosen(int asn); // the user moved to a row
    void carEdited(int asn);

private:
    void updateCount();

    CarListModel* model_ = nullptr;
    QSortFilterProxyModel* proxy_ = nullptr;
    QTableView* table_ = nullptr;
    QLineEdit* filter_ = nullptr;
    QLabel* count_ = nullptr;
    QLabel* report_ = nullptr;
    bool moving_ = false; // the row is moved by showCar, not by the user
};

} // namespace torquil
