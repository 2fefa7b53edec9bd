// Fuzzes the car info section reader: any section must load or end in a message, never crash or
// read outside the file; saving every loaded car back unchanged must leave the file's bytes as
// they were (each record is written at its place with exactly the length it was read with).

#include "base/binary_file.h"
#include "cars/car_info_io.h"
#include "fake_platform.h"
#include "fuzz_support.h"
#include "session/session_io.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torquil;
    if (size < 4) return 0;
    // Byte 0: dump file on/off and how far the section claims to run past the data; bytes 1..3:
    // sprite counts of the boat, bus and car kinds; the rest is the file, the section at its start.
    // One session for the whole run: its page buffers are large and none of them is used here.
    static StyleSession s([] {
        AppOptions options;
        options.workDir = fuzz::scratchDir();
        return options;
    }());
    s.options.dumps.carInfo = data[0] & 1;
    s.errors.clear();
    s.cars = CarTable{};
    s.style.gSaveCarInfo.assign(1, 0);
    s.sprites.spriteNumbers = {};
    s.sprites.spriteNumbers[2] = data[1];
    s.sprites.spriteNumbers[4] = data[2];
    s.sprites.spriteNumbers[5] = static_cast<std::int8_t>(data[3]); // negative counts too
    const auto path = fuzz::scratchDir() / "STYLE001.G24";
    const std::vector<std::uint8_t> before(data + 4, data + size);
    std::vector<std::uint8_t> after = before;
    s.style.path = path;
    s.style.gMapNumber = 1;
    s.style.gSeekCarInfo = 1;
    s.style.gSeekCarInfoEnd = 1 + static_cast<std::int64_t>(size - 4) - (data[0] >> 1) * 8 +
                              (data[0] & 0x80 ? 100000 : 0);

    testing::FakePlatform platform;
    {
        BinaryFile file(s.errors);
        file.openBytes(after, path);
        (void)loadCarInfo(s, file, platform);
    }
    s.errors.clear();
    for (int asn = 1; asn < static_cast<int>(s.cars.slots.size()); ++asn) {
        if (!s.cars.slots[static_cast<std::size_t>(asn)].inUse) continue;
        dumpCarInfo(s, platform, asn);
        s.style.gSaveCarInfo.push_back(static_cast<std::int16_t>(asn));
    }
    {
        BinaryFile file(s.errors);
        file.openBytes(after, path);
        (void)saveCarInfo(s, file, platform);
    }
    if (after != before) std::abort();
    return 0;
}
