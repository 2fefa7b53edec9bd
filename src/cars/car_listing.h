#pragma once
// A car's record as named values in file order, for listings and scripts: every field by its
// record name, arrays by index ("remap24[3].H", "remap8[3]", "value[2]") and the door records as
// "door[0].rpx" ... . 16.16 fields are given as the editor shows them (float32in), `moment` raw.
// The same names (with "name" and "value" for all four values) address the editor's boxes.

#include "cars/car_fields.h"
#include "cars/car_info.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace torquil {

struct NamedValue {
    std::string name;
    std::string text;
};

// The record's fixed part (without the door records) in file order.
[[nodiscard]] std::vector<NamedValue> carRecordValues(const CarInfo& info);
// "door[i].rpx", "door[i].rpy", "door[i].object", "door[i].delta" for every door record.
[[nodiscard]] std::vector<NamedValue> carDoorValues(const std::vector<DoorRec>& doors);

// An editor box addressed by name: "width", "rbp_mass", "value" (all four), "name",
// "remap24[i].H|L|S", "remap8[i]", "door[i].rpx|rpy|object|delta". nullopt for anything else.
struct FieldAddress {
    int index = -1;
    FieldCursor at;
};
[[nodiscard]] std::optional<FieldAddress> carFieldAddress(std::string_view name);

} // namespace torquil
