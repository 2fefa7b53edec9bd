#include "cars/car_info_io.h"

#include "base/binary_file.h"
#include "base/checked.h"
#include "cars/car_names.h"
#include "cars/car_record.h"
#include "platform/dump_file.h"
#include "platform/format_context.h"
#include "platform/platform.h"
#include "sprites/sprite_tables.h"
#include "style/style_file.h"

#include <algorithm>

namespace torquil {

namespace {

// Sprite kinds in the order of the sprite numbers record, as far as vehicles need them.
enum Kind {
    kBoat = 2,
    kBus = 4,
    kCar = 5,
    kSpeedoEnd = 9,
    kLightsEnd = 11,
    kBike = 13,
    kTram = 14
};

// How many sprite counts precede the vehicle type's own kind; -1: the type has no kind.
int countsBefore(int vtype) {
    switch (vtype) {
    case 0:
        return kBus; // arrow, digits, boat, box
    case 1:
    case 2:
    case 4:
        return kCar; // arrow .. bus
    case 3:
        return kBike; // arrow .. train doors
    case 8:
        return kLightsEnd; // arrow .. traffic lights (the train's own kind follows)
    case 9:
        return kTram; // arrow .. bike
    case 13:
        return kBoat; // arrow, digits
    case 14:
        return kSpeedoEnd; // arrow .. speedo (the tank's own kind follows)
    default:
        return -1;
    }
}

std::string recordLine(int asn, const CarInfo& c) {
    return "ABSN(" + std::to_string(asn) + ") RSN:" + std::to_string(c.spr_num) +
           "  vtype:" + std::to_string(c.vtype) + " model:" + std::to_string(c.model);
}

} // namespace

int absoluteSpriteNumber(const SpriteTables& sprites, int vtype, int spr_num) {
    const int before = countsBefore(vtype);
    if (before < 0) return 0;
    return spr_num + 1 + sprites.countBefore(before);
}

bool loadCarInfo(CarTable& table, const CarNames& names, const SpriteTables& sprites,
                 const StyleFileState& style, BinaryFile& file, FormatContext& ctx) {
    ErrorState& errors = ctx.errors;
    Platform& platform = ctx.platform;
    table = CarTable{};
    // Room up to the last car sprite at once rather than moving the table as it grows; capped by
    // the sprites the file really has, so a wild sprite count cannot reserve more.
    const int lastCar = std::min<int>(sprites.lastCarSprite(), sprites.spriteCount);
    if (lastCar > 0) table.slots.reserve(static_cast<std::size_t>(lastCar) + 1);
    const std::int64_t start = style.gSeekCarInfo, end = style.gSeekCarInfoEnd;
    file.seek(start);
    platform.detail("loadCarInfoSeek:" + std::to_string(start));

    DumpFile dump;
    if (ctx.options.dumps.carInfo &&
        dump.open(ctx.options.workDir, "CARINFO" + std::to_string(style.gMapNumber) + ".txt",
                  errors)) {
        dump.line(style.gStyleFileName);
        dump.line("Carinfo data as follows is loaded per cds.doc 3.1.3");
        dump.line(
            "Absolute sprite_num calculated by offseting loaded RSN with 3.2.4 sprite_numbers");
    }

    while (file.position() < end) {
        const std::int64_t recordStart = file.position();
        CarFixedBytes fixed{};
        // A record cut short by the end of the file is not a record.
        if (file.read(fixed) < fixed.size()) break;
        ++table.count;
        const CarInfo info = decodeCarFixed(fixed);

        // Door records as far as the file really holds them: a wild count cannot make us
        // allocate more than the file's bytes, and the record is written back exactly as read.
        std::vector<DoorRec> doors;
        for (int d = 0; d < info.doors && !file.atEnd(); ++d) {
            DoorBytes bytes{};
            if (file.read(bytes) < bytes.size()) break;
            doors.push_back(decodeDoor(bytes));
        }

        const int asn = absoluteSpriteNumber(sprites, info.vtype, info.spr_num);
        if (asn == 0) {
            platform.detail("Unknown " + recordLine(0, info));
            continue;
        }
        platform.detail(recordLine(asn, info));

        if (asn > table.highest) {
            resizeToLast(table.slots, asn, errors, "car info table");
            table.highest = asn;
        }
        if (asn < table.lowest) table.lowest = asn;

        CarEntry& entry = checkedAt(table.slots, asn, errors, "car info table");
        entry.inUse = true;
        entry.info = info;
        entry.fileSeek = static_cast<std::int32_t>(recordStart);
        entry.name = names.nameOf(info.model);
        entry.doorList = std::move(doors);
        if (dump.isOpen())
            for (const std::string& line : carInfoDebugText(asn, entry)) dump.line(line);
    }
    dump.close();

    bool ok = true;
    if (file.atEnd()) {
        platform.message("Unexpected EOF during loadCarInfo");
        ok = false;
    }
    platform.detail(std::to_string(table.count) + " car_infos loaded");
    platform.detail(std::to_string(table.highest) + " highest spr_num loaded");
    platform.detail(std::to_string(table.lowest) + " lowest spr_num loaded");
    return ok && !errors.hasPending();
}

int saveCarInfo(const CarTable& cars, StyleFileState& style, BinaryFile& file, FormatContext& ctx) {
    ErrorState& errors = ctx.errors;
    std::vector<std::int16_t>& queue = style.gSaveCarInfo;
    for (std::size_t i = 1; i < queue.size(); ++i) {
        const CarEntry& entry = checkedAt(cars.slots, queue[i], errors, "gSaveCarInfo");
        if (!entry.inUse) continue;
        file.seek(entry.fileSeek);
        file.write(encodeCarFixed(entry.info));
        // The record keeps its length: the door records written are those that were read.
        for (const DoorRec& door : entry.doorList) file.write(encodeDoor(door));
    }
    queue.assign(1, 0);
    return errors.pending();
}

} // namespace torquil
