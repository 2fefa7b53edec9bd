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
class StyleSession;
struct SpriteTables;

// The absolute sprite number of a record: spr_num + 1 + the sprite counts of the kinds stored
// before the vehicle's own kind. 0 for a vtype without a sprite kind (an unknown record).
int absoluteSpriteNumber(const SpriteTables& sprites, int vtype, int spr_num);

// Reads the whole car info section (session.style.gSeekCarInfo .. gSeekCarInfoEnd) into
// session.cars, with the details lines of every record; writes the CARINFO dump file when
// session.options.dumps.carInfo is set. False after "Unexpected EOF during loadCarInfo" or when a
// run-time error is pending.
bool loadCarInfo(StyleSession& session, BinaryFile& file, Platform& platform);

// Writes every car listed in session.style.gSaveCarInfo at its fileSeek (174 bytes and then the
// door records that were read), then empties the list. Returns the pending error number (0 = ok).
int saveCarInfo(StyleSession& session, BinaryFile& file, Platform& platform);

// Every field of a loaded car, one details line each ("car_info fileSeek:...", " width:...").
void dumpCarInfo(const StyleSession& session, Platform& platform, int asn);
std::vector<std::string> carInfoDumpLines(const CarEntry& entry);

// The lines of one car in the CARINFO dump file (ending with an empty line).
std::vector<std::string> carInfoDebugText(int asn, const CarEntry& entry);

} // namespace torquil
