#include "PlixctlArguments.h"

#include <gtest/gtest.h>

namespace {

PlixctlArguments parse(std::vector<std::string> words)
{
    words.insert(words.begin(), "plixctl");
    static std::vector<std::vector<char>> store;
    store.clear();
    std::vector<char*> argv;
    for (const std::string& word : words) {
        store.emplace_back(word.begin(), word.end());
        store.back().push_back('\0');
    }
    for (auto& word : store) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    return PlixctlArguments(static_cast<int>(words.size()), argv.data());
}

using Command = PlixctlArguments::Command;
using SetMode = PlixctlArguments::SetMode;

} // namespace

TEST(PlixctlArgumentsTest, GetTakesItsIdsInOrder)
{
    const auto arguments = parse({"get", "a/x", "b/y"});
    EXPECT_EQ(arguments.error(), "");
    EXPECT_EQ(arguments.command(), Command::get);
    EXPECT_EQ(arguments.operands(), (std::vector<std::string>{"a/x", "b/y"}));
    EXPECT_FALSE(arguments.json());
    EXPECT_EQ(arguments.address(), "");
}

TEST(PlixctlArgumentsTest, OptionsMayStandBeforeOrAfterTheCommand)
{
    const auto arguments = parse({"--json", "list", "--address", "unix:path=/tmp/bus"});
    EXPECT_EQ(arguments.error(), "");
    EXPECT_EQ(arguments.command(), Command::list);
    EXPECT_TRUE(arguments.json());
    EXPECT_EQ(arguments.address(), "unix:path=/tmp/bus");
}

TEST(PlixctlArgumentsTest, AddressMayBeJoinedWithAnEqualsSign)
{
    EXPECT_EQ(parse({"--address=unix:path=/x", "list"}).address(), "unix:path=/x");
}

TEST(PlixctlArgumentsTest, SetIsPersistentByDefault)
{
    EXPECT_EQ(parse({"set", "a/x=1"}).setMode(), SetMode::persistent);
    EXPECT_EQ(parse({"set", "--no-persist", "a/x=1"}).setMode(), SetMode::noPersist);
    EXPECT_EQ(parse({"set", "--transient", "a/x=1"}).setMode(), SetMode::transient);
}

TEST(PlixctlArgumentsTest, TransientAndNoPersistExcludeEachOther)
{
    EXPECT_EQ(parse({"set", "--transient", "--no-persist", "a/x=1"}).error(),
              "--transient and --no-persist exclude each other");
}

TEST(PlixctlArgumentsTest, SetModeBelongsToSetOnly)
{
    EXPECT_EQ(parse({"get", "--transient", "a/x"}).error(),
              "--transient and --no-persist belong to the command set");
}

TEST(PlixctlArgumentsTest, DashAndNegativeNumbersAreOperands)
{
    const auto arguments = parse({"verify", "a/pw", "-"});
    EXPECT_EQ(arguments.error(), "");
    EXPECT_EQ(arguments.operands(), (std::vector<std::string>{"a/pw", "-"}));
    EXPECT_EQ(parse({"verify", "a/x", "-5"}).operands()[1], "-5");
}

TEST(PlixctlArgumentsTest, DoubleDashEndsTheOptions)
{
    const auto arguments = parse({"set", "--", "a/x=--json"});
    EXPECT_EQ(arguments.error(), "");
    EXPECT_FALSE(arguments.json());
    EXPECT_EQ(arguments.operands(), std::vector<std::string>{"a/x=--json"});
}

TEST(PlixctlArgumentsTest, HelpNeedsNoCommand)
{
    const auto arguments = parse({"--help"});
    EXPECT_TRUE(arguments.helpRequested());
    EXPECT_EQ(arguments.error(), "");
    EXPECT_TRUE(parse({"-h"}).helpRequested());
}

TEST(PlixctlArgumentsTest, MistakesAreNamed)
{
    EXPECT_EQ(parse({}).error(), "no command given");
    EXPECT_EQ(parse({"frob"}).error(), "unknown command 'frob'");
    EXPECT_EQ(parse({"--frob", "list"}).error(), "unknown option '--frob'");
    EXPECT_EQ(parse({"list", "--address"}).error(), "--address needs a bus address");
    EXPECT_EQ(parse({"list", "a/x"}).error(), "this command takes no operands");
    EXPECT_EQ(parse({"monitor", "a/x"}).error(), "this command takes no operands");
    EXPECT_EQ(parse({"status", "a/x"}).error(), "this command takes no operands");
    EXPECT_EQ(parse({"get"}).error(), "get needs at least one XML-ID");
    EXPECT_EQ(parse({"verify", "a/x"}).error(), "verify needs an XML-ID and a value");
    EXPECT_EQ(parse({"set"}).error(), "set needs at least one ID=VALUE");
    EXPECT_EQ(parse({"set", "a/x"}).error(), "'a/x' is not of the form ID=VALUE");
    EXPECT_EQ(parse({"set", "=1"}).error(), "'=1' is not of the form ID=VALUE");
}

TEST(PlixctlArgumentsTest, UsageShowsTheExitStatusTable)
{
    EXPECT_NE(PlixctlArguments::usage().find("  64  usage error\n"), std::string::npos);
}

TEST(PlixctlArgumentsTest, StatusIsACommand)
{
    const auto arguments = parse({"status"});
    EXPECT_EQ(arguments.error(), "");
    EXPECT_EQ(arguments.command(), PlixctlArguments::Command::status);
}

TEST(PlixctlArgumentsTest, UsageShowsTheExitStatusOfAChangeNotStored)
{
    EXPECT_NE(PlixctlArguments::usage().find(
                  "  9   set: applied, but a store file could not be written (code 17);\n"),
              std::string::npos);
}

TEST(PlixctlArgumentsTest, CheckTakesAtMostOneFile)
{
    EXPECT_EQ(parse({"check"}).command(), Command::check);
    EXPECT_EQ(parse({"--json", "check", "/tmp/p.xml"}).operands(),
              (std::vector<std::string>{"/tmp/p.xml"}));
    EXPECT_EQ(parse({"check", "a.xml", "b.xml"}).error(), "check takes at most one FILE");
}

TEST(PlixctlArgumentsTest, ConfirmTakesItsSecondsAlsoJoinedWithAnEqualsSign)
{
    const auto arguments = parse({"set", "--confirm", "120", "a/x=1"});
    EXPECT_EQ(arguments.error(), "");
    EXPECT_EQ(arguments.confirmSeconds(), 120u);
    EXPECT_EQ(arguments.setMode(), SetMode::persistent);
    EXPECT_EQ(parse({"import", "--confirm=600", "backup.json"}).confirmSeconds(), 600u);
    EXPECT_FALSE(parse({"set", "a/x=1"}).confirmSeconds().has_value());
}

TEST(PlixctlArgumentsTest, ConfirmNeedsANumberAndAStoredChange)
{
    EXPECT_EQ(parse({"set", "--confirm", "ten", "a/x=1"}).error(),
              "--confirm needs a number of SECONDS, not 'ten'");
    EXPECT_EQ(parse({"set", "a/x=1", "--confirm"}).error(), "--confirm needs a number of SECONDS");
    EXPECT_EQ(parse({"set", "--no-persist", "--confirm", "60", "a/x=1"}).error(),
              "--confirm keeps a stored change: not with --transient or --no-persist");
    EXPECT_EQ(parse({"export", "--confirm", "60"}).error(),
              "--confirm belongs to the commands set and import");
}

TEST(PlixctlArgumentsTest, ConfirmationAndBackupCommandsTakeTheirOperands)
{
    EXPECT_EQ(parse({"confirm", "abc"}).command(), Command::confirm);
    EXPECT_EQ(parse({"cancel", "abc"}).operands(), std::vector<std::string>{"abc"});
    EXPECT_EQ(parse({"pending"}).command(), Command::pending);
    EXPECT_EQ(parse({"export"}).command(), Command::exportValues);
    EXPECT_EQ(parse({"import", "f.json"}).command(), Command::importValues);
    EXPECT_EQ(parse({"confirm"}).error(),
              "this command needs the TOKEN that set --confirm printed");
    EXPECT_EQ(parse({"pending", "x"}).error(), "this command takes no operands");
    EXPECT_EQ(parse({"export", "a", "b"}).error(), "export takes at most one FILE");
    EXPECT_EQ(parse({"import"}).error(), "import needs one FILE");
}
