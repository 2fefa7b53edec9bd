#pragma once
// The editor's own open checks run on a style file and ENGLISH.FXT held in memory, before they
// are written: a writer that would leave files the editor then refuses to open refuses instead.

#include "base/result.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace torquil {

class StyleSession;

// Runs the load sequence with the standard loaders on `style` as the file at `stylePath`, with
// ENGLISH.FXT read from `fxt` (empty: the level has none). Success when the editor would open
// them; else a failure whose message is what it would say, the lines joined with "\r".
[[nodiscard]] Result<void> checkLevelBytes(const std::filesystem::path& stylePath,
                                           std::vector<std::uint8_t> style,
                                           const std::vector<std::uint8_t>& fxt);

// The same check on bytes the caller lends: they are loaded where they lie, not copied, and are
// as they were afterwards (the loaders only read).
[[nodiscard]] Result<void> checkLentLevelBytes(const std::filesystem::path& stylePath,
                                               std::vector<std::uint8_t>& style,
                                               const std::vector<std::uint8_t>& fxt);

// The session the editor would open from those bytes (with its sprites, never null); when it
// would refuse them, a failure whose message is what it would say.
[[nodiscard]] Result<std::unique_ptr<StyleSession>>
loadLevelBytes(const std::filesystem::path& stylePath, std::vector<std::uint8_t> style,
               const std::vector<std::uint8_t>& fxt);

} // namespace torquil
