#pragma once
// A debug dump text file in the program's directory, one line per call. Failing to create it
// raises "Path/File access error" (75) on the given error state.

#include "base/runtime_error.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace torquil {

class DumpFile {
public:
    DumpFile() = default;
    // Opens (and empties) folder/name; on failure raises 75 and stays closed.
    [[nodiscard]] bool open(const std::filesystem::path& folder, const std::string& name,
                            ErrorState& errors);
    [[nodiscard]] bool isOpen() const { return out_.is_open(); }
    void line(const std::string& text) {
        if (out_.is_open()) out_ << text << '\n';
    }
    void close() {
        if (out_.is_open()) out_.close();
    }

private:
    std::ofstream out_;
};

} // namespace torquil
