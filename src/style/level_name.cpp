#include "style/level_name.h"

#include <cctype>
#include <cstdlib>

namespace torquil {

std::string toUpperAscii(std::string s) {
    for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return s;
}

int mapNumberFromFileName(const std::string& fileName) {
    std::string upper = toUpperAscii(fileName);
    auto style = upper.find("STYLE");
    if (style == std::string::npos) return 0;
    auto dot = upper.find('.', style);
    if (dot == std::string::npos) return 0;
    std::string digits = upper.substr(style + 5, dot - style - 5);
    // The number: leading blanks skipped, an optional sign, then as many digits as there are.
    std::size_t i = 0;
    while (i < digits.size() && digits[i] == ' ') ++i;
    long value = 0;
    bool negative = false;
    if (i < digits.size() && (digits[i] == '-' || digits[i] == '+')) negative = digits[i++] == '-';
    for (; i < digits.size() && std::isdigit(static_cast<unsigned char>(digits[i])); ++i) {
        value = value * 10 + (digits[i] - '0');
        if (value > 32767) return 0;
    }
    return static_cast<int>(negative ? -value : value);
}

bool isG24FileName(const std::string& fileName) {
    std::string upper = toUpperAscii(fileName);
    return upper.size() >= 4 && upper.compare(upper.size() - 4, 4, ".G24") == 0;
}

std::string mapName(int mapNumber) {
    switch (mapNumber) {
    case 1:
        return "Port Alder";
    case 2:
        return "Sierra Bay";
    case 3:
        return "Palm Reach";
    default:
        return "Map Name?";
    }
}

std::string bitDepthText(bool is24) {
    return is24 ? " 24bit" : " 8bit";
}

std::string loadOptionText(int loadOption) {
    switch (loadOption) {
    case 0:
        return " [Sprites]";
    case 1:
        return " [Tiles]";
    default:
        return " loadOption?";
    }
}

std::string windowCaption(const std::string& styleFileName, int mapNumber, bool is24,
                          int loadOption) {
    return "Torquil: " + styleFileName + " (" + mapName(mapNumber) + bitDepthText(is24) + ")" +
           loadOptionText(loadOption);
}

} // namespace torquil
