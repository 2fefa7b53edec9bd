#pragma once
// torquil-cli as a function: what main() and the tests call. Kept free of the argument parser's
// headers, so a file that runs commands compiles in a moment.

#include <iosfwd>
#include <string>
#include <vector>

namespace torquil::cli {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;

// Parses and runs a whole command line; returns the exit status.
[[nodiscard]] int run(int argc, const char* const* argv, std::ostream& out, std::ostream& err);
[[nodiscard]] int run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

} // namespace torquil::cli
