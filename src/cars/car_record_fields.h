#pragma once
// Names of the parts of a car info record by byte offset, so that a changed byte of the record
// can be told to a modder as the field it belongs to.

#include <string>

namespace torquil {

// The field that holds byte `offset` of a car info record: "max_speed", "remap24[3]",
// "value[1]", ...; offsets from 174 on are door records ("door 1" is the first). Empty for a
// negative offset.
[[nodiscard]] std::string carRecordFieldAt(int offset);

} // namespace torquil
