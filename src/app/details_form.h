#pragma once
// detailsFrm: the lines of the details log in a list that can be copied, saved and cleared.

#include <QWidget>

class QListWidget;

namespace torquil {

class DetailsLog;

class DetailsForm : public QWidget {
    Q_OBJECT
public:
    explicit DetailsForm(DetailsLog& log, QWidget* parent = nullptr);

    [[nodiscard]] QListWidget* list() const { return list_; }
    // The selected lines joined by line breaks, in list order.
    [[nodiscard]] QString selectedText() const;
    void copySelection() const;
    // Writes every line to a text file; false when it cannot be written.
    [[nodiscard]] bool saveTo(const QString& file) const;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void saveAs();

    DetailsLog& log_;
    QListWidget* list_ = nullptr;
};

} // namespace torquil
