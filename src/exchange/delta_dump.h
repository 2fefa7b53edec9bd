#pragma once
// The text dumps of the delta table that the Debug menu's "Generate Delta Dump Files" turns on:
// "loadDelta.txt" while loading and "loaddeltassave.txt" while saving, one value per line.

#include "exchange/deltas.h"

#include <cstdint>
#include <filesystem>
#include <fstream>

namespace torquil {

class DeltaLoadDump {
public:
    // Replaces the file; its first line holds the time, the date and " loadDelta ".
    explicit DeltaLoadDump(const std::filesystem::path& file);
    void beginDelta(int index, const DeltaRec& delta, std::int64_t start, std::int64_t end);
    void run(int runIndex, const RunLine& run);
    void endDelta(std::int64_t calculatedSize);

private:
    std::ofstream out_;
};

class DeltaSaveDump {
public:
    explicit DeltaSaveDump(const std::filesystem::path& file);
    // Only deltas 220 to 255 and those above 380 are logged; the others are saved silently.
    [[nodiscard]] static bool logs(int index) {
        return (index >= 220 && index <= 255) || index > 380;
    }
    void beginDelta(int index, std::int32_t newPtr);
    void run(int index, int runIndex, const RunLine& run);
    void endDelta(std::int32_t ptr, std::int16_t size);

private:
    std::ofstream out_;
};

} // namespace torquil
