#pragma once
// The car list's table: one row per loaded car (in ASN order), one column per main field of the
// car editor. Cells show the editor's texts and sort by their numbers; editing a cell runs the
// same core edit as the editor, with the editor's limits.

#include <QAbstractTableModel>

#include <vector>

namespace torquil {

class StyleSession;

class CarListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    static constexpr int kAsnColumn = 0;
    static constexpr int kNameColumn = 1;
    static constexpr int kSortRole = Qt::UserRole; // numbers as numbers, names as text

    explicit CarListModel(QObject* parent = nullptr);

    // The session listed; nullptr or a session without cars lists nothing. Never owned.
    void setSession(StyleSession* session);
    // Re-reads every row (after the car editor or a load changed the cars).
    void refresh();

    [[nodiscard]] int asnAt(int row) const;
    [[nodiscard]] int rowOf(int asn) const; // -1 when the car is not listed
    // The car editor's box index a column shows (-1 for the ASN column).
    [[nodiscard]] static int fieldIndex(int column);
    [[nodiscard]] static int columnOf(int fieldIndex); // -1 when the field has no column

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    [[nodiscard]] bool setData(const QModelIndex& index, const QVariant& value, int role) override;

signals:
    // A car was changed through the list (the save command may light up).
    void carEdited(int asn);
    // A text was not taken, or was clamped to a limit: what to tell the user.
    void editReport(const QString& text);

private:
    StyleSession* session_ = nullptr;
    std::vector<int> asns_;
};

} // namespace torquil
