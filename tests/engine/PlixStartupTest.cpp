#include "PlixEngineFixture.h"

#include <cstdio>

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

const char* const defaultPath = "/etc/orvanta/plix/plix_config.xml";

std::string usageText()
{
    return "\nUsage: dbus-ex-plix [OPTION]\n\nOptions:\n"
           "  -s      triggering all onChangeHandler on startup\n"
           "  -c FILENAME     uses the xml under this certain path to configure plix\n\n\n";
}

// A death test sees standard error only; the statement sends standard output
// there too, so the usage text and log lines can be matched.
void configureWithOutputOnStderr(Plix& engine, std::vector<std::string> arguments)
{
    std::fflush(stdout);
    dup2(2, 1);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(&argument[0]);
    }
    pointers.push_back(nullptr);
    engine.configure(static_cast<int>(arguments.size()), pointers.data());
}

std::string escapedForRegex(const std::string& text)
{
    std::string escaped;
    for (const char c : text) {
        if (std::string("\\^$.|?*+()[]{}").find(c) != std::string::npos) {
            escaped += '\\';
        }
        escaped += c;
    }
    return escaped;
}

using PlixStartupTest = PlixEngineFixture;
using PlixStartupDeathTest = PlixEngineFixture;

} // namespace

TEST_F(PlixStartupTest, ConfigureLogsPathAndLoadsWithoutTriggering)
{
    const auto lines = outputOf([&] { configureTestEngine(); });
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0], "[NFO] Configuring Plix");
    EXPECT_EQ(lines[1], "[NFO] XML Config File Path: " + path("plix.xml"));
    EXPECT_THAT(lines, Not(Contains("[NOT] Triggering all onChange handler")));
    EXPECT_FALSE(exists("actions.log"));
}

TEST_F(PlixStartupTest, PathGivenTwiceLogsBothAndUsesSecond)
{
    writeFile("other.xml", "<broken");
    writeFile("plix.xml", testXml);
    writeFile("main.json", testMainJson);
    writeFile("fixed.json", testFixedJson);
    const auto lines = outputOf([&] {
        configureWith({"-c", path("other.xml"), "-c", path("plix.xml")});
    });
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines[1], "[NFO] XML Config File Path: " + path("other.xml"));
    EXPECT_EQ(lines[2], "[NFO] XML Config File Path: " + path("plix.xml"));
    int value = 0;
    EXPECT_EQ(engine->getIntValueTransient("t", "a/i", value), 0);
    EXPECT_EQ(value, 5);
}

TEST_F(PlixStartupTest, WithSDataSetActionRunsOnceAtStartWithoutChange)
{
    configureTestEngine({"-s"});
    const auto log = actionLog();
    EXPECT_EQ(std::count(log.begin(), log.end(), "dataset-a"), 1);
    EXPECT_EQ(std::count(log.begin(), log.end(), "dataset-ports"), 1);
}

TEST_F(PlixStartupTest, StartUpPassRunsMarkedActionsValueActionsFirst)
{
    std::vector<std::string> lines;
    lines = outputOf([&] { configureTestEngine({"-s"}); });
    EXPECT_THAT(lines, Contains("[NOT] Triggering all onChange handler"));
    EXPECT_THAT(actionLog(), ElementsAre("value-i 5", "value-i-boot", "dataset-a", "dataset-a-boot",
                                         "dataset-ports"));
}

TEST_F(PlixStartupTest, FailingActionDuringStartUpDoesNotStopLaterOnesAndLogsNothing)
{
    writeFile("fail-value-i", "");
    writeFile("fail-dataset-a", "");
    const auto lines = outputOf([&] { configureTestEngine({"-s"}); });
    EXPECT_THAT(actionLog(), ElementsAre("value-i 5", "value-i-boot", "dataset-a", "dataset-a-boot",
                                         "dataset-ports"));
    for (const std::string& line : lines) {
        EXPECT_THAT(line, Not(HasSubstr("Triggering onChange")));
    }
}

TEST_F(PlixStartupTest, StartUpPassNeitherOpensTransactionNorChangesValues)
{
    configureTestEngine({"-s"});
    EXPECT_EQ(engine->transactionStart("client-a", true), 0);
    int value = 0;
    EXPECT_EQ(engine->getIntValue("client-a", "a/i", value), 0);
    EXPECT_EQ(value, 5);
}

TEST_F(PlixStartupTest, TriggerOnChangeCanBeCalledDirectly)
{
    configureTestEngine();
    const auto lines = outputOf([&] { engine->triggerOnChange(); });
    EXPECT_EQ(lines.front(), "[NOT] Triggering all onChange handler");
    EXPECT_THAT(actionLog(), ElementsAre("value-i 5", "value-i-boot", "dataset-a", "dataset-a-boot",
                                         "dataset-ports"));
}

TEST_F(PlixStartupTest, SecondConfigureRereadsValuesAndTriggersWithoutReloadingXml)
{
    configureTestEngine();
    ASSERT_EQ(engine->setIntValueTransient("t", "a/i", 50), 0);
    ASSERT_EQ(std::remove(path("plix.xml").c_str()), 0);
    const auto lines = outputOf([&] { configureWith({"-s", "-c", path("plix.xml")}); });
    EXPECT_THAT(lines, Contains("[NOT] Triggering all onChange handler"));
    for (const std::string& line : lines) {
        EXPECT_THAT(line, Not(HasSubstr("Parsing")));
    }
    int value = 0;
    EXPECT_EQ(engine->getIntValueTransient("t", "a/i", value), 0);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(engine->getIntValueTransient("t", "link/copy", value), 0);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(actionLog().back(), "dataset-ports");
}

TEST_F(PlixStartupTest, SecondConfigureWithoutSDoesNotTrigger)
{
    configureTestEngine({"-s"});
    const std::size_t runs = actionLog().size();
    configureWith({"-c", path("plix.xml")});
    EXPECT_EQ(actionLog().size(), runs);
}

TEST_F(PlixStartupDeathTest, NoOptionsTakesDefaultFile)
{
    if (access(defaultPath, F_OK) == 0) {
        GTEST_SKIP() << "this machine has a configuration at the default path";
    }
    Plix plix;
    EXPECT_EXIT(configureWithOutputOnStderr(plix, {"dbus-ex-plix"}), ::testing::ExitedWithCode(1),
                "\\[NFO\\] Configuring Plix\n\\[NFO\\] No XML-file specified for Plix\\. Taking "
                "default XML-file, "
                "path: /etc/orvanta/plix/plix_config\\.xml\n");
}

TEST_F(PlixStartupDeathTest, HelpPrintsUsageAndEndsWithStatus1)
{
    Plix plix;
    EXPECT_EXIT(configureWithOutputOnStderr(plix, {"dbus-ex-plix", "-h"}),
                ::testing::ExitedWithCode(1),
                "\\[NFO\\] Configuring Plix\n" + escapedForRegex(usageText()) + "$");
}

TEST_F(PlixStartupDeathTest, UnknownOptionPrintsUsageAndEndsWithStatus1)
{
    Plix plix;
    EXPECT_EXIT(configureWithOutputOnStderr(plix, {"dbus-ex-plix", "-x", "-c", "/nonexistent.xml"}),
                ::testing::ExitedWithCode(1),
                AllOf(HasSubstr("dbus-ex-plix: invalid option -- 'x'\n"), HasSubstr(usageText())));
}

TEST_F(PlixStartupDeathTest, MissingPathOfCPrintsUsageAndEndsWithStatus1)
{
    Plix plix;
    EXPECT_EXIT(configureWithOutputOnStderr(plix, {"dbus-ex-plix", "-c"}),
                ::testing::ExitedWithCode(1), escapedForRegex(usageText()) + "$");
}

TEST_F(PlixStartupDeathTest, DaemonOptionIsIgnoredByTheEngine)
{
    Plix plix;
    EXPECT_EXIT(configureWithOutputOnStderr(plix, {"dbus-ex-plix", "-d", "-h"}),
                ::testing::ExitedWithCode(1),
                "\\[NFO\\] Configuring Plix\n" + escapedForRegex(usageText()) + "$");
}
