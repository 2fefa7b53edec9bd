#pragma once
// Shared by the fuzz targets: write the input to a temporary style file and load it through the
// real load sequence with a platform that answers nothing and prints nothing.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace torquil::fuzz {

// A per-process scratch folder under the system's temporary directory.
const std::filesystem::path& scratchDir();
// Writes data to scratchDir()/name and returns the path.
std::filesystem::path writeScratch(const std::string& name, const std::uint8_t* data,
                                   std::size_t size);

} // namespace torquil::fuzz
