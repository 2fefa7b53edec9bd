#pragma once
// The one place where text (UTF-8 in std::string, as the command line and messages carry it)
// becomes a file system path and back. On Windows a narrow std::string given to
// std::filesystem::path may be read in the system's code page, so names in other scripts
// would turn into "?"; these helpers always mean UTF-8.

#include <filesystem>
#include <string>
#include <string_view>

namespace torquil {

[[nodiscard]] std::filesystem::path pathFromUtf8(std::string_view text);
[[nodiscard]] std::string utf8Of(const std::filesystem::path& path);

} // namespace torquil
