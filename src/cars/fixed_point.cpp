#include "cars/fixed_point.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace torquil {

std::string float32in(std::int32_t stored) {
    // Thousandths = stored * 1000 / 65536 = stored * 125 / 8192, done in integers so that the
    // halfway cases are exact.
    const std::int64_t magnitude = std::llabs(static_cast<std::int64_t>(stored)) * 125;
    std::int64_t thousandths = magnitude / 8192;
    if ((magnitude % 8192) * 2 >= 8192) ++thousandths;
    std::string frac = std::to_string(thousandths % 1000);
    frac.insert(0, 3 - frac.size(), '0');
    return (stored < 0 ? "-" : "") + std::to_string(thousandths / 1000) + "." + frac;
}

std::optional<double> parseNumber(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    bool negative = false;
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    // from_chars takes no sign of its own here, and neither "inf" nor "nan" are numbers to us.
    if (text.empty() ||
        !(std::isdigit(static_cast<unsigned char>(text.front())) || text.front() == '.'))
        return std::nullopt;
    double value = 0;
    auto [end, ec] =
        std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::general);
    if (ec != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return negative ? -value : value;
}

std::int64_t wholeNumber(double value) {
    constexpr double kLimit = 9.0e18;
    if (std::isnan(value)) return 0;
    if (value >= kLimit) return static_cast<std::int64_t>(kLimit);
    if (value <= -kLimit) return -static_cast<std::int64_t>(kLimit);
    // nearbyint follows the default rounding mode: to nearest, halves to even.
    return static_cast<std::int64_t>(std::nearbyint(value));
}

std::int32_t float32out(const std::string& text) {
    const std::optional<double> value = parseNumber(text);
    if (!value) return 0;
    const std::int64_t stored = wholeNumber(*value * 65536.0);
    constexpr std::int64_t lo = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t hi = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(stored < lo ? lo : stored > hi ? hi : stored);
}

} // namespace torquil
