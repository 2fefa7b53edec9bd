#pragma once
// Level numbers and the words of the window caption.

#include <string>

namespace torquil {

// The integer between "STYLE" and the next "." of the upper-cased file name (STYLE001.G24 -> 1);
// 0 when there is no "STYLE", no "." after it, or no number between them.
[[nodiscard]] int mapNumberFromFileName(const std::string& fileName);
// True when the upper-cased name ends in ".G24".
[[nodiscard]] bool isG24FileName(const std::string& fileName);
[[nodiscard]] std::string toUpperAscii(std::string s);

[[nodiscard]] std::string mapName(int mapNumber);
[[nodiscard]] std::string bitDepthText(bool is24);
[[nodiscard]] std::string loadOptionText(int loadOption);
// "Torquil: STYLE001.G24 (Port Alder 24bit) [Sprites]"
[[nodiscard]] std::string windowCaption(const std::string& styleFileName, int mapNumber, bool is24,
                                        int loadOption);

} // namespace torquil
