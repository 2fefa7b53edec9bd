#pragma once
// The style file's car info section: loading it into the car table, writing changed records
// back in place, and printing one car's record to the details window.

#include "cars/car_info.h"
#include "cars/fixed_point.h" // float32in / float32out

#include <cstdint>
#include <string>
#include <vector>

namespace torquil {

class BinaryFile;
class Platform;
struct CarNames;
struct FormatContext;
struct SpriteTables;
struct StyleFileState;

// The absolute sprite number of a record: spr_num + 1 + the sprite counts of the kinds stored
// before the vehicle's own kind. 0 for a vtype without a sprite kind (an unknown record).
[[nodiscard]] [[nodiscard]] [[nodiscard]] [[nodiscard]] int
absoluteSpriteNumber(const SpriteTables& sprites, int vtype, int spr_num);

// Reads the whole car info section (style.gSeekCarInfo .. gSeekCarInfoEnd) into `cars`, naming
// each car from `names`, with the details lines of every record; writes the CARINFO dump file when
// ctx.options.dumps.carInfo is set. False after "Unexpected EOF during loadCarInfo" or when a
// run-time error is pending.
[[nodiscard]] bool loadCarInfo(CarTable& cars, const CarNames& names, const SpriteTables& sprites,
                               const StyleFileState& style, BinaryFile& file, FormatContext& ctx);

// Writes every car listed in style.gSaveCarInfo at its fileSeek (174 bytes and then the door
// records that were read), then empties the list. Returns the pending error number (0 = ok).
[[nodiscard]] int saveCarInfo(const CarTable& cars, StyleFileState& style, BinaryFile& file,
                              FormatContext& ctx);

// Every field of a loaded car, one details line each ("car_info fileSeek:...", " width:...").
void dumpCarInfo(const CarTable& cars, Platform& platform, int asn);
[[nodiscard]] std::vector<std::string> carInfoDumpLines(const CarEntry& entry);

// The lines of one car in the CARINFO dump file (ending with an empty line).
[[nodiscard]] std::vector<std::string> carInfoDebugText(int asn, const CarEntry& entry);

} // namespace torquil
