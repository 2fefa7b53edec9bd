#pragma once
// The car info editor's fields: one row per text box of the editor's txtBox array (index 0..46),
// with the record field it edits, its label caption and tool tip, its limits and how its text is
// shown. The GUI editor and `torquil-cli car-set` both go through this table, so the two can
// never disagree about limits or number formats.
//
// How to use it
// -------------
//   - Build the boxes from carFields(): caption/toolTip for the label, kind for the formatting.
//   - Fill a box:      fieldText(entry, index, cursor)
//     (integers plain, 16.16 fields through float32in, `moment` raw). Remap boxes 38..41 show the
//     remap cursor.remap, door boxes 43..46 the door cursor.door; box 37 shows value[0].
//   - On every change: FieldCheck c = clampFieldText(index, text);
//     put c.text back into the box when c.clamped, and show c.report ("txtbox valve set to L val"
//     or "... H val") where the user sees it. Texts that are not a number yet ("-", ".", "-.")
//     come back unchanged with isNumber false. Boxes without limits (38..40, 42) are never clamped.
//   - When a box loses the focus: text = textOnLeave(text) (an empty box becomes "0").
//   - On accepting the form: setFieldText(entry, index, text, cursor) for every box
//     (16.16 through float32out; box 37 writes all four `value` entries; box 42 sets entry.name).
//     Door boxes write into the door cursor.door of entry.doorList.
//   - carFieldByName("rbp_mass") finds a row by its record field name (case-insensitive).

#include "cars/car_info.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace torquil {

enum class FieldKind {
    Integer, // shown and read as a plain whole number
    Fixed,   // 16.16 fixed point: shown through float32in, read through float32out
    Raw,     // a 32-bit value shown as the raw stored integer (moment)
    Remap,   // the selected remap: 24-bit hue, lightness, saturation, or the 8-bit palette index
    Name,    // the car's name (not part of the record)
    Door     // a field of the selected door record
};

struct CarField {
    int index;                // txtBox / Label1 index
    std::string_view field;   // record field name; remap and door parts as "remap24.H", "door.rpx"
    std::string_view caption; // Label1 caption
    std::string_view toolTip; // empty when the label has none
    std::int64_t low, high;   // limits of the validation (of the real value for 16.16 fields)
    FieldKind kind;
    bool limited; // false: the box is never clamped (38..40, 42)
};

inline constexpr int kCarFieldCount = 47;
// The editor's box of the car's name (ENGLISH.FXT), not a field of the record.
inline constexpr int kNameBox = 42;
inline constexpr int kValueBox = 37; // writes all four value entries

[[nodiscard]] const std::array<CarField, kCarFieldCount>& carFields();
[[nodiscard]] const CarField* carField(int index);                   // nullptr outside 0..46
[[nodiscard]] const CarField* carFieldByName(std::string_view name); // nullptr when unknown

// Which remap (0..11) and door (0-based in doorList) the remap and door boxes stand for.
struct FieldCursor {
    int remap = 0;
    int door = 0;
};

// The text the editor shows for a box. Empty for an unknown index or a missing door.
[[nodiscard]] std::string fieldText(const CarEntry& entry, int index, const FieldCursor& at = {});

// Validation of a box's text against its limits.
struct FieldCheck {
    std::string text;   // the text the box should hold now
    std::string report; // "txtbox valve set to L val" / "txtbox valve set to H val", or empty
    bool clamped = false;
    bool isNumber = false; // false: left alone (not a number yet, or a box without limits)
};
[[nodiscard]] FieldCheck clampFieldText(int index, const std::string& text);

// An empty (or all blank) box becomes "0" when it loses the focus.
[[nodiscard]] std::string textOnLeave(const std::string& text);

// Why a number does not fit the record field behind box `index`, in the user's words; empty when
// it fits or is not a number. The limits of cx and cy (-255 to 255) are wider than the signed
// byte the game reads them from, so within them -200 gives
// "the game reads cx as one signed byte (-128 to 127): -200 would be read as 56".
[[nodiscard]] std::string doesNotFitReason(int index, const std::string& text);

enum class FieldStore {
    Stored,
    NotANumber, // the text is not a number: nothing changed
    DoesNotFit, // the number does not fit the record field (cx = 200 into its signed byte)
    NoSuchField // unknown index, remap or door outside the record
};
// Writes a box's text into the entry (no clamping: run clampFieldText first). Nothing is ever
// wrapped: a number the record field cannot hold is refused (DoesNotFit).
[[nodiscard]] FieldStore setFieldText(CarEntry& entry, int index, const std::string& text,
                                      const FieldCursor& at = {});

} // namespace torquil
