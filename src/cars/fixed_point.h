#pragma once
// The car record's 16.16 fixed-point fields (stored value = real value x 65536) as the editor
// shows and reads them.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace torquil {

// Stored value -> text in the format "#0.000": at least one integer digit, exactly three
// decimals. A value exactly halfway between two thousandths rounds away from zero (4096 gives
// "0.063"), as the car editor shows it; a negative value keeps its sign even when it
// rounds to zero ("-0.000").
[[nodiscard]] std::string float32in(std::int32_t stored);

// Text -> stored value: the text read as a number, times 65536, rounded to the nearest integer
// with halves to even. Text that is not a number gives 0; results beyond the 32-bit range are
// clamped to it.
[[nodiscard]] std::int32_t float32out(const std::string& text);

// Reads a whole text box as a number: blanks around it allowed, an optional sign, digits with
// an optional fraction and exponent. Anything else gives nothing.
[[nodiscard]] std::optional<double> parseNumber(std::string_view text);

// A real number to a whole number, halves to even (how box texts become whole numbers).
[[nodiscard]] std::int64_t wholeNumber(double value);

} // namespace torquil
