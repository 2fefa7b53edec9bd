#pragma once
// torquil-cli run in-process, and small helpers to read what it printed.

#include "cli/run.h"

#include <sstream>
#include <string>
#include <vector>

namespace torquil::testing {

struct CliRun {
    int status = 0;
    std::string out, err;
};

// Runs torquil-cli with the given arguments (without the program name).
inline CliRun runCli(std::vector<std::string> args) {
    args.insert(args.begin(), "torquil-cli");
    std::ostringstream out, err;
    const int status = cli::run(args, out, err);
    return {status, out.str(), err.str()};
}

inline std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) result.push_back(line);
    return result;
}

inline bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace torquil::testing
