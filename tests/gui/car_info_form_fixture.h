#pragma once
// The sample level loaded for the car info editor's tests, and typing into its boxes.

#include "cars/car_field_notes.h"
#include "cars/car_fields.h"
#include "cars/fixed_point.h"
#include "cars/remap_colours.h"
#include "fake_platform.h"
#include "sample_level.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/save_sequence.h"
#include "session/session_io.h"
#include "sprites/clut.h"

#include "app/car_info_form.h"
#include "app/car_sprite_image.h"
#include "app/door_view.h"
#include "app/remap_preview.h"

#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QtTest>

#include <fstream>
#include <memory>

using namespace torquil;
using torquil::testing::FakePlatform;

namespace car_info_test {

constexpr int kWidthBox = 0, kSpriteNumberBox = 3, kGripBox = 9, kMassBox = 18, kValueBoxIndex = 37;
constexpr int kRpxBox = 43, kRpyBox = 44, kObjectBox = 45;

struct LoadedLevel {
    QTemporaryDir dir;
    FakePlatform platform;
    std::unique_ptr<StyleSession> session;
};

inline std::unique_ptr<LoadedLevel> loadSample(const char* file) {
    auto level = std::make_unique<LoadedLevel>();
    if (!level->dir.isValid()) return nullptr;
    const std::filesystem::path dir = level->dir.path().toStdString();
    torquil::testing::writeSampleLevel(dir);
    AppOptions options;
    options.workDir = dir;
    level->session = std::make_unique<StyleSession>(options);
    prepareStyle(level->session->style, dir / file, kLoadSprites);
    if (initHeader(*level->session, level->platform, standardLoaders()) != LoadOutcome::Loaded)
        return nullptr;
    level->platform.detailLines.clear();
    return level;
}

// The first car with at least `doors` doors (and a sprite), or 0.
inline int carWithDoors(StyleSession& session, std::size_t doors) {
    for (int asn = 1; asn <= session.cars.highest; ++asn)
        if (const CarEntry* car = session.cars.find(asn);
            car && car->doorList.size() >= doors && findSpriteByAsn(session, asn))
            return asn;
    return 0;
}

// Replaces a box's text by typing, key by key, as a user would.
inline void typeInto(QLineEdit* edit, const QString& text) {
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, text);
}

inline void leaveBox(QLineEdit* edit) {
    QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
    QApplication::sendEvent(edit, &out);
}

inline std::vector<std::int16_t> queued(const StyleSession& session) {
    return {session.style.gSaveCarInfo.begin() + 1, session.style.gSaveCarInfo.end()};
}

// The widget's page of SSTab1, or -1.
inline int pageOf(const CarInfoForm& form, const QWidget* widget) {
    for (int page = 0; page < form.tabs()->count(); ++page)
        if (form.tabs()->widget(page)->isAncestorOf(widget)) return page;
    return -1;
}

} // namespace car_info_test

using namespace car_info_test;
