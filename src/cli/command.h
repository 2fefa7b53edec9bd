#pragma once
// The command-line parser behind a small interface of our own. The command files declare their
// arguments through Command and Argument; only command.cpp includes the parser's headers, which
// take longer to compile than everything else in a command file together.

#include <functional>
#include <iosfwd>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace torquil::cli {

// Thrown by a command's action when its arguments do not fit together; reported like a parse
// error (the usage exit status).
class UsageError : public std::runtime_error {
public:
    UsageError(std::string where, const std::string& what);
    [[nodiscard]] const std::string& where() const { return where_; }

private:
    std::string where_;
};

class CommandLine;

// One option or positional argument of a command. Checks chain: `->required()->path()`.
class Argument {
public:
    Argument* required();
    Argument* oneOf(std::vector<std::string> choices);
    Argument* inRange(double lowest, double highest);
    // A file or folder name: a word that looks like an option ("--force", "-x") is refused,
    // naming it, instead of becoming a file of that name.
    Argument* path();

private:
    friend class Command;
    explicit Argument(CLI::Option* option) : option_(option) {}
    CLI::Option* option_;
};

// A command (or the program itself) with its options, subcommands and action.
class Command {
public:
    Command* addSubcommand(const std::string& name, const std::string& description);
    void requireSubcommand();
    Argument* addOption(const std::string& names, std::string& into, const std::string& help);
    Argument* addOption(const std::string& names, int& into, const std::string& help);
    Argument* addOption(const std::string& names, double& into, const std::string& help);
    Argument* addOption(const std::string& names, std::vector<std::string>& into,
                        const std::string& help);
    Argument* addFlag(const std::string& names, bool& into, const std::string& help);
    // Runs after a successful parse when this command was chosen.
    void action(std::function<void()> run);

private:
    friend class CommandLine;
    Command(CLI::App* app, CommandLine& owner) : app_(app), owner_(owner) {}
    Argument* keep(CLI::Option* option);
    CLI::App* app_;
    CommandLine& owner_;
};

// The program's whole command line: the root command with --version, and the parse.
class CommandLine {
public:
    CommandLine(const std::string& description, const std::string& versionText);
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    Command& root() { return *commands_.front(); }

    // Parses argv and runs the chosen command's action. Returns true when the action ran;
    // false after printing help, the version or a usage error, with `status` set to the exit
    // status to return (0 for help and version, usageStatus for errors).
    [[nodiscard]] bool parseAndRun(int argc, const char* const* argv, std::ostream& out,
                                   std::ostream& err, int usageStatus, int& status);

private:
    friend class Command;
    std::unique_ptr<CLI::App> app_;
    std::vector<std::unique_ptr<Command>> commands_;
    std::vector<std::unique_ptr<Argument>> arguments_;
};

} // namespace torquil::cli
