#include "exchange/delta_dump.h"

#include <ctime>

namespace torquil {

namespace {
std::string timeAndDate() {
    std::time_t now = std::time(nullptr);
    char text[64] = {};
    if (const std::tm* local = std::localtime(&now))
        std::strftime(text, sizeof text, "%H:%M:%S %d/%m/%Y", local);
    return text;
}
} // namespace

DeltaLoadDump::DeltaLoadDump(const std::filesystem::path& file)
    : out_(file, std::ios::out | std::ios::binary | std::ios::trunc) {
    out_ << timeAndDate() << " loadDelta \n";
}

void DeltaLoadDump::beginDelta(int index, const DeltaRec& delta, std::int64_t start,
                               std::int64_t end) {
    out_ << "LOADING DELTA:" << index << '\n'
         << " size:" << delta.size << '\n'
         << "  ptr:" << delta.ptr << '\n'
         << " deltaNext:" << end << '\n'
         << "  deltaStart:" << start << '\n';
}

void DeltaLoadDump::run(int runIndex, const RunLine& run) {
    out_ << "runLine(" << runIndex << ").offset:" << run.offset << '\n'
         << "runLine(" << runIndex << ").length:" << int{run.length} << '\n';
    for (std::size_t j = 0; j < run.data.size(); ++j)
        out_ << "runLine(" << runIndex << ").data(" << j << "):" << int{run.data[j]} << '\n';
}

void DeltaLoadDump::endDelta(std::int64_t calculatedSize) {
    out_ << "   CalcSize:" << calculatedSize << '\n';
}

DeltaSaveDump::DeltaSaveDump(const std::filesystem::path& file)
    : out_(file, std::ios::out | std::ios::binary | std::ios::trunc) {}

void DeltaSaveDump::beginDelta(int index, std::int32_t newPtr) {
    out_ << " SAVE DELTA:" << index << "  ptr:" << newPtr << '\n';
}

void DeltaSaveDump::run(int index, int runIndex, const RunLine& run) {
    out_ << " myDeltas(" << index << ").runLine(" << runIndex << ").offset:" << run.offset << '\n'
         << " myDeltas(" << index << ").runLine(" << runIndex << ").length:" << int{run.length}
         << '\n';
}

void DeltaSaveDump::endDelta(std::int32_t ptr, std::int16_t size) {
    out_ << " sprite_info.delta.ptr:" << ptr << '\n' << " sprite_info.delta.size:" << size << '\n';
}

} // namespace torquil
