// torquil-cli sets up only the command it is given: every command is still found by its name,
// and a line without one (help, a misspelt name) still knows them all.

#include "cli_runner.h"

#include <gtest/gtest.h>

namespace tb = torquil::testing;

namespace {

const char* const kEveryCommand[] = {
    "open",          "sprite",        "save-test",        "car",
    "cars",          "car-set",       "fxt2txt",          "txt2fxt",
    "export-sprite", "import-sprite", "transparency-fix", "gc3",
    "sound",         "sound-import",  "deltas",           "export-deltas",
    "import-deltas"};

} // namespace

TEST(CliCommandGroups, HelpListsEveryCommandAndEachNameReachesItsOwnCommand) {
    const tb::CliRun help = tb::runCli({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* name : kEveryCommand) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(tb::contains(help.out, std::string("\n  ") + name + " ")) << help.out;
        // Its own help: a usage line with its name, not the list of all commands.
        const tb::CliRun own = tb::runCli({name, "--help"});
        EXPECT_EQ(own.status, 0);
        EXPECT_TRUE(tb::contains(own.out, std::string(" ") + name + " ")) << own.out;
        EXPECT_FALSE(tb::contains(own.out, "Subcommands:") && std::string(name) != "gc3")
            << own.out;
    }
}

TEST(CliCommandGroups, UnknownOrMissingCommandIsAUsageError) {
    const tb::CliRun misspelt = tb::runCli({"opne", "x"});
    EXPECT_EQ(misspelt.status, 2);
    EXPECT_FALSE(misspelt.err.empty());
    const tb::CliRun none = tb::runCli({});
    EXPECT_EQ(none.status, 2);
    // A second command name after the first is no command of its own.
    const tb::CliRun two = tb::runCli({"car", "x.G24", "1", "open"});
    EXPECT_EQ(two.status, 2);
}
