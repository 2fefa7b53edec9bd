#pragma once
// Shared by the fuzz targets. The readers of style file sections read the input from memory
// (BinaryFile::openBytes); the targets that go through a whole file by name (the load sequence,
// ENGLISH.FXT, GC3 packs, sound banks) write it to a scratch folder first.

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
