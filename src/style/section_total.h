#pragma once
// What a style file's header says the whole file is long: every section in file order, with the
// tile area padded to whole groups of four tiles (16384 bytes) and, in a .G24 file, the CLUT
// section padded to whole pages (65536 bytes). A save refuses a file whose length differs, so that
// a damaged header is never written back.

#include "style/style_header.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace torquil {

[[nodiscard]] std::int64_t sectionTotal(const StyleHeader& header);

// Empty when the header's sections add up to `fileLength`, else the message that refuses the save.
[[nodiscard]] std::string sectionMismatch(const std::filesystem::path& path,
                                          const StyleHeader& header, std::int64_t fileLength);

} // namespace torquil
