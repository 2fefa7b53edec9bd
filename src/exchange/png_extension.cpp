#include "exchange/png_codec.h"

#include <algorithm>
#include <cctype>

namespace torquil {

bool hasPngExtension(const std::string& fileName) {
    if (fileName.size() < 4) return false;
    std::string tail = fileName.substr(fileName.size() - 4);
    std::transform(tail.begin(), tail.end(), tail.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return tail == ".png";
}

} // namespace torquil
