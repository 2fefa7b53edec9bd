// Fuzzes the delta store reader and writer. The input gives the delta table (size and ptr of up
// to 32 deltas, as sprite info would list them) and the bytes of the sprite graphics section.
// Any input must load without a crash or a runaway loop; a save must then keep every delta's
// runs (up to the first run with offset 0), and a second save must not change a byte.

#include "base/binary_file.h"
#include "exchange/delta_io.h"
#include "fake_platform.h"
#include "fuzz_support.h"
#include "session/session_io.h"

#include <cstdint>
#include <vector>

namespace {

constexpr int kHeaderBytes = 64;
constexpr int kEntryBytes = 6;

torquil::StyleSession& sharedSession() {
    static torquil::StyleSession session = [] {
        torquil::AppOptions options;
        options.workDir = torquil::fuzz::scratchDir();
        return torquil::StyleSession(options);
    }();
    return session;
}

// The runs a save writes: those before the first run with offset 0.
std::vector<std::vector<torquil::RunLine>> usedRuns(const torquil::DeltaTable& table) {
    std::vector<std::vector<torquil::RunLine>> all;
    for (int i = 0; i < table.deltaCount; ++i) {
        std::vector<torquil::RunLine> used;
        for (const auto& run : table.myDeltas[static_cast<std::size_t>(i)].runLine) {
            if (run.offset == 0) break;
            used.push_back(run);
        }
        all.push_back(std::move(used));
    }
    return all;
}

bool sameRuns(const std::vector<std::vector<torquil::RunLine>>& a,
              const std::vector<std::vector<torquil::RunLine>>& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i].size() != b[i].size()) return false;
        for (std::size_t k = 0; k < a[i].size(); ++k)
            if (a[i][k].offset != b[i][k].offset || a[i][k].length != b[i][k].length ||
                a[i][k].data != b[i][k].data)
                return false;
    }
    return true;
}

// Fills the table from the entries as they lie in the file (what sprite info would read).
void readTable(torquil::StyleSession& s, const std::vector<std::uint8_t>& bytes, int count) {
    auto& table = s.deltas;
    table.myDeltas.assign(static_cast<std::size_t>(std::max(count, 1)), torquil::DeltaRec{});
    table.deltaCount = count;
    for (int i = 0; i < count; ++i) {
        const std::size_t at = kHeaderBytes + static_cast<std::size_t>(i) * kEntryBytes;
        auto& d = table.myDeltas[static_cast<std::size_t>(i)];
        d.entryPos = static_cast<std::int32_t>(at + 1);
        d.size = torquil::getI16(&bytes[at]);
        d.ptr = torquil::getI32(&bytes[at + 2]);
    }
}

// Reads the table and the deltas from the file's bytes in memory. A failed load is one of the
// expected ends (a delta past the section); what matters is that it ends.
void load(torquil::StyleSession& s, std::vector<std::uint8_t>& bytes, int count) {
    readTable(s, bytes, count);
    s.errors.clear();
    torquil::testing::FakePlatform platform;
    torquil::BinaryFile file(s.errors);
    file.openBytes(bytes, s.style.path);
    (void)torquil::loadDeltas(s, file, platform);
}

// Writes the delta store into the bytes in memory; 0 or the run-time error number.
int save(torquil::StyleSession& s, std::vector<std::uint8_t>& bytes) {
    torquil::testing::FakePlatform platform;
    torquil::BinaryFile file(s.errors);
    file.openBytes(bytes, s.style.path);
    s.style.gDeltasChanged = true;
    return torquil::saveDeltas(s, file, platform);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torquil;
    if (size < 3) return 0;
    // Byte 0: kind of file and number of deltas; byte 1: where the page area ends, counted
    // back from the end of the file; then 6 bytes per delta entry; the rest is the section.
    const int count = std::min<int>(data[0] >> 3, static_cast<int>((size - 2) / kEntryBytes));
    const std::size_t tableBytes = static_cast<std::size_t>(count) * kEntryBytes;
    std::vector<std::uint8_t> bytes(kHeaderBytes, 0);
    bytes.insert(bytes.end(), data + 2, data + 2 + tableBytes);
    const std::int64_t graphicsStart = static_cast<std::int64_t>(bytes.size()) + 1;
    bytes.insert(bytes.end(), data + 2 + tableBytes, data + size);

    StyleSession& s = sharedSession();
    s.style = StyleFileState{};
    s.style.path = fuzz::scratchDir() / (data[0] & 1 ? "STYLE001.G24" : "STYLE001.GRY");
    s.style.gIs24Bit = s.style.header.is24 = data[0] & 1;
    s.style.gSeekGraphicsStart = graphicsStart;
    s.style.gSeekGraphicsEnd =
        std::max(graphicsStart, static_cast<std::int64_t>(bytes.size()) + 1 - data[1]);
    s.deltas = DeltaTable{};

    load(s, bytes, count);
    const auto loaded = usedRuns(s.deltas);
    if (save(s, bytes) != 0) return 0;

    std::vector<std::uint8_t> saved = bytes;
    load(s, bytes, count);
    if (!sameRuns(usedRuns(s.deltas), loaded)) __builtin_trap();
    if (save(s, bytes) != 0) __builtin_trap();
    if (bytes != saved) __builtin_trap();
    return 0;
}
