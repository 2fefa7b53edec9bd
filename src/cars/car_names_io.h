#pragma once
// Car names: read from ENGLISH.FXT beside the style file when a style is opened (the decoded text
// stays in memory for the save), written back into it after names were changed in the editor.

#include "cars/car_names.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace torquil {

struct FormatContext;
struct StyleFileState;

// Fills `names` from ENGLISH.FXT (found in the style's folder ignoring case). Without the file: a
// three-line warning and the built-in names; the load goes on. A file that decodes to no car
// entries (empty or damaged) is warned about and treated the same way. False only when the
// existing file could not be decoded.
[[nodiscard]] bool loadCarNames(CarNames& names, const StyleFileState& style, FormatContext& ctx);

// The new ENGLISH.FXT: the decoded text of the load with `names`, coded. False (with the message
// shown) when the load had no ENGLISH.FXT to decode.
[[nodiscard]] bool buildCarNamesFxt(const CarNames& names, const StyleFileState& style,
                                    FormatContext& ctx, std::vector<std::uint8_t>& fxt);

// Builds ENGLISH.FXT and replaces the file with it through commitFiles, only when it is still the
// file the names were read from (the save sequence instead writes it together with the style
// file); `names` then remembers the new file.
[[nodiscard]] bool saveCarNames(CarNames& names, const StyleFileState& style, FormatContext& ctx);

// What ENGLISH.FXT looks like now (after a load or a save of it).
void rememberFxtState(CarNames& names, const std::filesystem::path& fxt);

// The note shown after car names were saved.
inline constexpr const char* kCarNamesSavedNote =
    "Note: Car name changes are not accepted by KRB until it is restarted.";

// The names the editor uses when the style has no ENGLISH.FXT (no keys).
void fillBuiltInNames(CarNames& names);

} // namespace torquil
