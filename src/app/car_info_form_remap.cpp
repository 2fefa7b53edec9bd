// The remap page of carInfoFrm: RemapList picks one of the car's 12 remaps, boxes 38 to 41 show
// and edit it, and RemapPic shows the car in its colours.

#include "app/car_info_form.h"

#include "app/car_sprite_image.h"
#include "app/remap_bar.h"
#include "app/remap_preview.h"
#include "session/session_io.h"
#include "sprites/clut.h"

#include <QLabel>
#include <QListWidget>

namespace torquil {

void CarInfoForm::remapListClick(int row) {
    if (row < 0 || row >= kRemapCount) return;
    cursor_.remap = row;
    if (remapList_->currentRow() != row) remapList_->setCurrentRow(row);
    for (int index = 38; index <= 41; ++index) setBoxText(index, fieldText(entry_, index, cursor_));
    refreshRemap();
}

void CarInfoForm::refreshRemap() {
    const bool is24 = session_.style.gIs24Bit;
    const CarInfo& info = entry_.info;
    const auto& hls = info.remap24[static_cast<std::size_t>(cursor_.remap)];
    imageBar_->setValues(hls[0], hls[1], hls[2]);
    remapInUse_->setVisible(remapInUse(info, cursor_.remap, is24));

    if (sprite_) {
        if (is24) {
            remapPic_->setPicture(spriteImage(session_, *sprite_, remapClut(baseColours_, hls)));
        } else {
            // The 8-bit palette is fixed: the car keeps its colours, the swatch shows the remap's.
            const std::uint32_t swatch = palette8Colours(
                session_.colours)[info.remap8[static_cast<std::size_t>(cursor_.remap)]];
            remapPic_->setPicture(spriteImage(session_, *sprite_, baseColours_),
                                  QColor::fromRgb(swatch));
        }
    }
    for (std::size_t i = 0; i < colorationLabels_.size(); ++i) {
        const ColorationLine& line = kColorationLines[i];
        colorationLabels_[i]->setText(QString::fromLatin1(line.caption) + " " +
                                      QString::fromStdString(describeColoration(info, line, is24)));
    }
}

} // namespace torquil
