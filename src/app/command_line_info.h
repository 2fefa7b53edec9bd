#pragma once
// The window's informational options: --help and --version print and exit before any window
// (or display connection) exists.

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace torquil {

// The usage text of the window's command line.
[[nodiscard]] std::string windowUsage();

// When the arguments (without the program name) ask for help or the version, prints it to
// `out` and returns the exit status; otherwise returns nothing and the program starts.
[[nodiscard]] std::optional<int> answerInfoOptions(const std::vector<std::string>& arguments,
                                                   std::ostream& out);

} // namespace torquil
