#pragma once
// Shared by the fuzz targets: write the input to a temporary style file and load it through the
// real load sequence with a platform that answers nothing and prints nothing.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace torquil {
class StyleSession;
}

namespace torquil::fuzz {

// A per-process scratch folder under the system's temporary directory.
const std::filesystem::path& scratchDir();
// Writes data to scratchDir()/name and returns the path.
std::filesystem::path writeScratch(const std::string& name, const std::uint8_t* data,
                                   std::size_t size);

// One session for all runs of a target (its page buffers are large), emptied of the previous
// run's tables.
StyleSession& reusedSession();

} // namespace torquil::fuzz
