// The one file that compiles the command-line parser (CLI11).

#include "cli/command.h"

#include "base/argument_words.h"

#include <CLI/CLI.hpp>

#include <ostream>

namespace torquil::cli {

UsageError::UsageError(std::string where, const std::string& what)
    : std::runtime_error(what), where_(std::move(where)) {}

Argument* Argument::required() {
    option_->required();
    return this;
}

Argument* Argument::oneOf(std::vector<std::string> choices) {
    option_->check(CLI::IsMember(std::move(choices)));
    return this;
}

Argument* Argument::inRange(double lowest, double highest) {
    option_->check(CLI::Range(lowest, highest));
    return this;
}

Argument* Argument::path() {
    // The parser hands an option its next word even when that word is another option's name:
    // `-o --force` would otherwise write a file called "--force".
    option_->check(
        CLI::Validator([](std::string& value) { return optionWordAsPathMessage(value); }, "PATH"));
    return this;
}

Command* Command::addSubcommand(const std::string& name, const std::string& description) {
    owner_.commands_.push_back(
        std::unique_ptr<Command>(new Command(app_->add_subcommand(name, description), owner_)));
    return owner_.commands_.back().get();
}

void Command::requireSubcommand() {
    app_->require_subcommand(1);
}

Argument* Command::keep(CLI::Option* option) {
    owner_.arguments_.push_back(std::unique_ptr<Argument>(new Argument(option)));
    return owner_.arguments_.back().get();
}

Argument* Command::addOption(const std::string& names, std::string& into, const std::string& help) {
    return keep(app_->add_option(names, into, help));
}

Argument* Command::addOption(const std::string& names, int& into, const std::string& help) {
    return keep(app_->add_option(names, into, help));
}

Argument* Command::addOption(const std::string& names, double& into, const std::string& help) {
    return keep(app_->add_option(names, into, help));
}

Argument* Command::addOption(const std::string& names, std::vector<std::string>& into,
                             const std::string& help) {
    return keep(app_->add_option(names, into, help));
}

Argument* Command::addFlag(const std::string& names, bool& into, const std::string& help) {
    return keep(app_->add_flag(names, into, help));
}

void Command::action(std::function<void()> run) {
    app_->callback(std::move(run));
}

CommandLine::CommandLine(const std::string& description, const std::string& versionText)
    : app_(std::make_unique<CLI::App>(description)) {
    app_->set_version_flag("--version", versionText);
    commands_.push_back(std::unique_ptr<Command>(new Command(app_.get(), *this)));
}

CommandLine::~CommandLine() = default;

bool CommandLine::parseAndRun(int argc, const char* const* argv, std::ostream& out,
                              std::ostream& err, int usageStatus, int& status) {
    try {
        app_->parse(argc, argv);
        return true;
    } catch (const CLI::Success& e) {
        status = app_->exit(e, out, err);
    } catch (const CLI::ParseError& e) {
        app_->exit(e, out, err);
        status = usageStatus;
    } catch (const UsageError& e) {
        app_->exit(CLI::ValidationError(e.where(), e.what()), out, err);
        status = usageStatus;
    }
    return false;
}

} // namespace torquil::cli
