#pragma once
// CRC-32 (the polynomial 0xEDB88320 of zip and PNG) of a byte run.

#include <cstdint>
#include <span>

namespace torquil {

[[nodiscard]] std::uint32_t crc32(std::span<const std::uint8_t> bytes, std::uint32_t crc = 0);

} // namespace torquil
