#pragma once
// The window that lists what a GC3 car pack changes, in a modder's words: shown after a pack is
// built, and before one is applied, when it asks whether to go on.

#include "session/car_pack_preview.h"

#include <QDialog>
#include <QImage>
#include <QStringList>

class QDialogButtonBox;
class QLabel;
class QTreeWidget;

namespace torquil {

class CarPackPreviewForm : public QDialog {
    Q_OBJECT
public:
    enum class Purpose {
        Built, // just written: Close
        Apply  // about to be applied: Apply or Cancel
    };
    CarPackPreviewForm(const CarPackPreview& preview, const QString& packName, Purpose purpose,
                       QWidget* parent = nullptr);

    // The listed lines: group headings and, indented by two blanks, their entries.
    QStringList listedLines() const;
    QString headline() const;
    // Apply (Purpose::Apply) or Close (Purpose::Built).
    void confirm();
    // The pictures shown of each repainted sprite: before, then after, sprite by sprite.
    QList<QImage> spritePictures() const { return pictures_; }

    // A picture of the preview as an image, built a whole row at a time.
    static QImage imageOf(const CarPackPreview::Picture& picture);

private:
    QWidget* picturesPanel(const CarPackPreview& preview);

    QList<QImage> pictures_;
    QLabel* headline_ = nullptr;
    QTreeWidget* list_ = nullptr;
    QDialogButtonBox* buttons_ = nullptr;
};

} // namespace torquil
