#include "exchange/bitmap_names.h"

#include <charconv>
#include <regex>

namespace torquil {

namespace {

// The digits as a number; nothing when they do not fit an int.
std::optional<int> toInt(const std::string& digits) {
    int value = 0;
    const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (ec != std::errc{} || end != digits.data() + digits.size()) return std::nullopt;
    return value;
}

std::string upper(std::string s) {
    for (char& c : s)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return s;
}

} // namespace

std::optional<BitmapTarget> bitmapTarget(const std::string& fileName, int level) {
    static const std::regex re(R"(^(KRBSPR|KRBTIL|CAR|C_CAR)(\d+)_(\d+)\.BMP$)", std::regex::icase);
    std::smatch m;
    if (!std::regex_match(fileName, m, re)) return std::nullopt;
    // A level too large for a number counts as level 0.
    if (toInt(m[2].str()).value_or(0) != level) return std::nullopt;
    const std::optional<int> number = toInt(m[3].str());
    if (!number) return std::nullopt;
    const std::string prefix = upper(m[1].str());
    const BitmapTarget::Kind kind = prefix == "KRBSPR"   ? BitmapTarget::Sprite
                                    : prefix == "KRBTIL" ? BitmapTarget::Tile
                                                         : BitmapTarget::Car;
    return BitmapTarget{kind, *number};
}

} // namespace torquil
