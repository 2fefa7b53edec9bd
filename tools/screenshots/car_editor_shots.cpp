// torquil-car-editor-shots STYLEFILE OUTDIR: opens the car info editor on the level's first car
// with two doors, its fourth remap chosen, and writes a picture of every page into OUTDIR as
// car_editor_1.png, car_editor_2.png, ... (numbered by page; the captions are in the pictures),
// and the manual's pictures of that car's centre of mass and doors (car_centre_of_mass.png,
// car_door_positions.png).

#include "app/board_palette.h"
#include "app/car_field_pictures.h"
#include "app/car_info_form.h"
#include "app/car_sprite_image.h"
#include "platform/qt/qt_platform.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/style_session.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QListWidget>
#include <QTabWidget>
#include <QTemporaryDir>

#include <cstdio>

using namespace torquil;

namespace {

int firstCarWithDoors(StyleSession& session, std::size_t doors) {
    for (int asn = 1; asn <= session.cars.highest; ++asn)
        if (const CarEntry* car = session.cars.find(asn);
            car && car->doorList.size() >= doors && findSpriteByAsn(session, asn))
            return asn;
    return 0;
}

// Lets the window lay itself out and paint before it is grabbed.
void settle() {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 50) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    torquil::applyBoardPalette(app);
    if (argc != 3) {
        std::fprintf(stderr, "usage: torquil-car-editor-shots STYLEFILE OUTDIR\n");
        return 2;
    }
    const std::filesystem::path style = argv[1];
    const QString out = QString::fromLocal8Bit(argv[2]);

    // Settings and work files of their own, so the pictures never depend on a user's state.
    QTemporaryDir scratch;
    if (!scratch.isValid()) return 1;
    QtPlatform platform(scratch.filePath(QStringLiteral("settings.ini")));
    AppOptions options;
    options.workDir = scratch.path().toStdString();
    StyleSession session(options);
    prepareStyle(session.style, style, kLoadSprites);
    if (initHeader(session, platform, standardLoaders()) != LoadOutcome::Loaded) {
        std::fprintf(stderr, "Could not load %s\n", style.string().c_str());
        return 1;
    }
    const int asn = firstCarWithDoors(session, 2);
    if (asn == 0) {
        std::fprintf(stderr, "%s has no car with two doors\n", style.string().c_str());
        return 1;
    }

    CarInfoForm form(session, platform, asn);
    form.show();
    form.findChild<QListWidget*>(QStringLiteral("RemapList"))->setCurrentRow(3);
    for (int page = 0; page < form.tabs()->count(); ++page) {
        form.tabs()->setCurrentIndex(page);
        settle();
        const QString file = QStringLiteral("%1/car_editor_%2.png").arg(out).arg(page + 1);
        if (!form.grab().save(file)) {
            std::fprintf(stderr, "Could not write %s\n", qPrintable(file));
            return 1;
        }
    }
    // The manual's pictures of the centre of mass and the door positions, on the same car.
    const std::pair<const char*, FieldPicture> pictures[] = {
        {"car_centre_of_mass.png", centreOfMassPicture(session, asn)},
        {"car_door_positions.png", doorPositionsPicture(session, asn)}};
    for (const auto& [name, picture] : pictures) {
        const QString file = out + QLatin1Char('/') + QLatin1String(name);
        if (picture.image.isNull() || !picture.image.save(file)) {
            std::fprintf(stderr, "Could not write %s\n", qPrintable(file));
            return 1;
        }
    }
    return 0;
}
