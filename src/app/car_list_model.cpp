#include "app/car_list_model.h"
#include "app/qt_text.h"

#include "cars/car_fields.h"
#include "cars/fixed_point.h"
#include "session/car_edit.h"
#include "session/style_session.h"

#include <array>

namespace torquil {

namespace {

// The editor's boxes shown, after the ASN: name, model and type first, then the main fields and
// the centre of mass (cx, cy).
constexpr std::array<int, 20> kColumnFields = {42, 12, 11, 0,  1,  2,  4,  5,  6,  7,
                                               8,  9,  10, 13, 14, 18, 19, 37, 15, 16};

// What was refused, why (from the core: the value the game would read, the name rule) and that
// nothing changed.
QString rejectionText(const QString& caption, const QString& text, const std::string& why) {
    return CarListModel::tr("%1: \"%2\" refused: %3. Nothing changed.")
        .arg(caption, text, QString::fromStdString(why));
}

} // namespace

CarListModel::CarListModel(QObject* parent) : QAbstractTableModel(parent) {}

void CarListModel::setSession(StyleSession* session) {
    session_ = session;
    refresh();
}

void CarListModel::refresh() {
    beginResetModel();
    asns_.clear();
    if (session_ && session_->style.loaded) {
        CarTable& cars = session_->cars;
        for (int asn = 1; asn <= cars.highest; ++asn)
            if (cars.find(asn)) asns_.push_back(asn);
    }
    endResetModel();
}

int CarListModel::asnAt(int row) const {
    return row >= 0 && row < static_cast<int>(asns_.size()) ? asns_[static_cast<std::size_t>(row)]
                                                            : 0;
}

int CarListModel::rowOf(int asn) const {
    for (std::size_t i = 0; i < asns_.size(); ++i)
        if (asns_[i] == asn) return static_cast<int>(i);
    return -1;
}

int CarListModel::fieldIndex(int column) {
    if (column <= kAsnColumn || column > static_cast<int>(kColumnFields.size())) return -1;
    return kColumnFields[static_cast<std::size_t>(column - 1)];
}

int CarListModel::columnOf(int index) {
    for (std::size_t i = 0; i < kColumnFields.size(); ++i)
        if (kColumnFields[i] == index) return static_cast<int>(i) + 1;
    return -1;
}

int CarListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(asns_.size());
}

int CarListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(kColumnFields.size()) + 1;
}

QVariant CarListModel::data(const QModelIndex& index, int role) const {
    if (!session_ || !index.isValid()) return {};
    const int asn = asnAt(index.row());
    const CarEntry* car = session_->cars.find(asn);
    if (!car) return {};
    const int field = fieldIndex(index.column());
    if (role == Qt::TextAlignmentRole)
        return field == kNameBox ? QVariant(Qt::AlignLeft | Qt::AlignVCenter)
                                 : QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (index.column() == kAsnColumn) {
        if (role == Qt::DisplayRole || role == kSortRole) return asn;
        return {};
    }
    if (role != Qt::DisplayRole && role != Qt::EditRole && role != kSortRole) return {};
    const std::string text = fieldText(*car, field);
    if (field == kNameBox) {
        const QString name = fromGameText(text);
        return role == kSortRole ? QVariant(name.toLower()) : QVariant(name);
    }
    if (role == kSortRole) return parseNumber(text).value_or(0.0);
    return QString::fromStdString(text);
}

QVariant CarListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return QAbstractTableModel::headerData(section, orientation, role);
    const CarField* field = carField(fieldIndex(section));
    if (section != kAsnColumn && !field) return {};
    if (role == Qt::DisplayRole) {
        if (section == kAsnColumn) return tr("ASN");
        if (field->index == kNameBox) return tr("Name");
        if (field->index == 11) return tr("Type");
        return QString::fromLatin1(field->caption.data(),
                                   static_cast<qsizetype>(field->caption.size()));
    }
    if (role == Qt::ToolTipRole) {
        if (section == kAsnColumn) return tr("Absolute sprite number of the car");
        QString tip = QString::fromLatin1(field->caption.data(),
                                          static_cast<qsizetype>(field->caption.size()));
        if (!field->toolTip.empty())
            tip += QStringLiteral(" (") +
                   QString::fromLatin1(field->toolTip.data(),
                                       static_cast<qsizetype>(field->toolTip.size())) +
                   QStringLiteral(")");
        if (field->limited) tip += tr(", %1 to %2").arg(field->low).arg(field->high);
        return tip;
    }
    return {};
}

Qt::ItemFlags CarListModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags f = QAbstractTableModel::flags(index);
    if (index.isValid() && index.column() != kAsnColumn) f |= Qt::ItemIsEditable;
    return f;
}

bool CarListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!session_ || role != Qt::EditRole || !index.isValid() || index.column() == kAsnColumn)
        return false;
    const int asn = asnAt(index.row());
    const int field = fieldIndex(index.column());
    const QString caption = headerData(index.column(), Qt::Horizontal, Qt::DisplayRole).toString();
    const CarEntry* before = session_->cars.find(asn);
    if (!before) return false;
    const QString text = value.toString();
    if (text == data(index, Qt::EditRole).toString()) return true; // nothing changed

    const std::string stored =
        field == kNameBox ? text.toLatin1().toStdString() : text.trimmed().toStdString();
    const auto edited = editCarField(*session_, asn, field, stored);
    if (!edited) {
        emit editReport(rejectionText(caption, text, edited.message()));
        return false;
    }
    const std::string& report = edited.value();
    if (!report.empty())
        emit editReport(caption + QStringLiteral(": ") + QString::fromStdString(report));
    // A name is shared by every car of the model; a model change may show another name.
    if (field == kNameBox || field == 12)
        emit dataChanged(this->index(0, 0), this->index(rowCount() - 1, columnCount() - 1));
    else
        emit dataChanged(this->index(index.row(), 0), this->index(index.row(), columnCount() - 1));
    emit carEdited(asn);
    return true;
}

} // namespace torquil
