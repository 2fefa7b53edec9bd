#pragma once
// What a console program does before its first line of output: arguments as UTF-8 (on
// Windows from the wide command line, not the code page) and standard output and error
// written byte for byte (no CR LF translation on Windows).

#include <string>
#include <vector>

namespace torquil {

// The program's arguments, the program name first, each in UTF-8.
[[nodiscard]] std::vector<std::string> utf8Arguments(int argc, char** argv);

// Puts standard output and standard error in binary mode (a no-op outside Windows).
void setBinaryStdio();

} // namespace torquil
