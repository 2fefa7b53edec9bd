#pragma once
// The editor's own open checks run on a style file and ENGLISH.FXT held in memory, before they
// are written: a writer that would leave files the editor then refuses to open refuses instead.

#include "base/result.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace torquil {

class StyleSession;

// Runs the load sequence with the standard loaders on `style` as the file at `stylePath`, with
// ENGLISH.FXT read from `fxt` (empty: the level has none). Success when the editor would open
// them; else the failure's message is what it would say, the lines joined with "\r".
[[nodiscard]] Result<void> checkLevelBytes(const std::filesystem::path& stylePath,
                                           std::vector<std::uint8_t> style,
                                           const std::vector<std::uint8_t>& fxt);

// The session the editor would open from those bytes (with its sprites), or what the editor
// would say when it would refuse them.
[[nodiscard]] Result<std::unique_ptr<StyleSession>>
loadLevelBytes(const std::filesystem::path& stylePath, std::vector<std::uint8_t> style,
               const std::vector<std::uint8_t>& fxt);

} // namespace torquil
