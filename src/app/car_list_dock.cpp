#include "app/car_list_dock.h"

#include "app/car_list_model.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>

namespace torquil {

CarListDock::CarListDock(QWidget* parent) : QDockWidget(tr("Car List"), parent) {
    setObjectName(QStringLiteral("dockCarList"));
    model_ = new CarListModel(this);
    proxy_ = new QSortFilterProxyModel(this);
    proxy_->setSourceModel(model_);
    proxy_->setSortRole(CarListModel::kSortRole);
    proxy_->setFilterKeyColumn(CarListModel::kNameColumn);
    proxy_->setFilterCaseSensitivity(Qt::CaseInsensitive);

    auto* body = new QWidget(this);
    filter_ = new QLineEdit(body);
    filter_->setObjectName(QStringLiteral("txtCarFilter"));
    filter_->setPlaceholderText(tr("Filter by name"));
    filter_->setClearButtonEnabled(true);
    count_ = new QLabel(body);
    count_->setObjectName(QStringLiteral("lblCarCount"));

    table_ = new QTableView(body);
    table_->setObjectName(QStringLiteral("tblCars"));
    table_->setModel(proxy_);
    table_->setSortingEnabled(true);
    table_->sortByColumn(CarListModel::kAsnColumn, Qt::AscendingOrder);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::AnyKeyPressed);
    table_->setAlternatingRowColors(true);
    table_->verticalHeader()->hide();
    table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 6);
    table_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table_->horizontalHeader()->setStretchLastSection(false);

    report_ = new QLabel(body);
    report_->setObjectName(QStringLiteral("lblCarReport"));
    report_->setWordWrap(true);

    auto* top = new QHBoxLayout;
    top->addWidget(filter_, 1);
    top->addWidget(count_);
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addLayout(top);
    layout->addWidget(table_, 1);
    layout->addWidget(report_);
    setWidget(body);

    connect(filter_, &QLineEdit::textChanged, this, [this](const QString& text) {
        proxy_->setFilterFixedString(text);
        updateCount();
    });
    connect(model_, &CarListModel::editReport, report_, &QLabel::setText);
    connect(model_, &CarListModel::carEdited, this, [this](int asn) { emit carEdited(asn); });
    connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                if (moving_ || !current.isValid()) return;
                const int asn = model_->asnAt(proxy_->mapToSource(current).row());
                if (asn > 0) emit carChosen(asn);
            });
    connect(model_, &QAbstractItemModel::modelReset, this, &CarListDock::updateCount);
    updateCount();
}

void CarListDock::setSession(StyleSession* session) {
    model_->setSession(session);
    report_->clear();
}

void CarListDock::refresh() {
    const int asn = model_->asnAt(proxy_->mapToSource(table_->currentIndex()).row());
    model_->refresh();
    if (asn > 0) (void)showCar(asn); // a car no longer listed is simply not shown
}

bool CarListDock::showCar(int asn) {
    const int row = model_->rowOf(asn);
    if (row < 0) return false;
    const QModelIndex at = proxy_->mapFromSource(model_->index(row, CarListModel::kAsnColumn));
    if (!at.isValid()) return false; // filtered out
    moving_ = true;
    table_->setCurrentIndex(at);
    table_->scrollTo(at);
    moving_ = false;
    return true;
}

void CarListDock::updateCount() {
    count_->setText(tr("%1 of %2 cars").arg(proxy_->rowCount()).arg(model_->rowCount()));
}

} // namespace torquil
