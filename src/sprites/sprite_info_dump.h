#pragma once
// The lines of the SPRINFO debug dump file, one block per sprite and per delta entry.

#include <cstdint>
#include <string>
#include <vector>

namespace torquil {

struct SpriteHead;

[[nodiscard]] std::vector<std::string> spriteDumpLines(int spriteNumber, std::int64_t headPosition,
                                                       const SpriteHead& head, bool is24);
[[nodiscard]] std::vector<std::string> deltaDumpLines(int myDeltaRef, int delta, std::int16_t size,
                                                      std::int32_t ptr);

} // namespace torquil
