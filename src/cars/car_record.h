#pragma once
// The car info record as the style file stores it: a 174-byte fixed part, little-endian and
// packed, followed by `doors` door records of 8 bytes. Read and written field by field.

#include "cars/car_info.h"

#include <array>
#include <cstdint>

namespace torquil {

using CarFixedBytes = std::array<std::uint8_t, CarInfo::kFixedSize>;
using DoorBytes = std::array<std::uint8_t, CarInfo::kDoorSize>;

[[nodiscard]] CarInfo decodeCarFixed(const CarFixedBytes& bytes);
[[nodiscard]] CarFixedBytes encodeCarFixed(const CarInfo& info);

[[nodiscard]] DoorRec decodeDoor(const DoorBytes& bytes);
[[nodiscard]] DoorBytes encodeDoor(const DoorRec& door);

} // namespace torquil
