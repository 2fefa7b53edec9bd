// The door page of carInfoFrm: DoorScroll picks the door whose record boxes 43 to 46 show; a click
// in PictDoors puts that door where the user clicked; Timer1 blinks its mark.

#include "app/car_info_form.h"

#include "app/door_view.h"

#include <QLineEdit>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>

namespace torquil {

void CarInfoForm::showDoor(int door) {
    const int count = static_cast<int>(entry_.doorList.size());
    cursor_.door = std::clamp(door, 0, std::max(count - 1, 0));
    txtBoxD_->setText(count == 0 ? QString("none")
                                 : QString("%1 of %2").arg(cursor_.door + 1).arg(count));
    for (int index = 43; index <= 46; ++index) setBoxText(index, fieldText(entry_, index, cursor_));
    refreshDoorView();
}

void CarInfoForm::doorMovedTo(int rpx, int rpy) {
    if (entry_.doorList.empty()) return;
    // Through the boxes, so that the position is checked and stored as if typed.
    box(43)->setText(QString::number(rpx));
    box(44)->setText(QString::number(rpy));
}

void CarInfoForm::timerTick() {
    pictDoors_->setMarkVisible(!pictDoors_->markVisible());
}

void CarInfoForm::refreshDoorView() {
    pictDoors_->setDoors(entry_.doorList, entry_.doorList.empty() ? -1 : cursor_.door);
}

} // namespace torquil
