#include "PlixConfigTestDir.h"
#include "PlixctlCheck.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <sys/stat.h>

namespace {

// Each configuration declares the store file "store" on line 3 and has its
// body from line 4 on, so that a test names the line it expects.
class PlixctlCheckTest : public ::testing::Test
{
protected:
    std::string config(const std::string& body, const std::string& more = "")
    {
        return dir.write("plix_config.xml", "<?xml version=\"1.0\"?>\n<plix>\n"
                                            "<Panel_file name=\"store\">" +
                                                dir.path("store.json") + "</Panel_file>" + more +
                                                "\n" + body + "\n</plix>\n");
    }

    std::vector<PlixctlProblem> check(const std::string& store, const std::string& body,
                                      const std::string& more = "")
    {
        dir.write("store.json", store);
        return PlixctlCheck::problemsOf(config(body, more));
    }

    // The one problem found, or an empty one after a failure.
    static PlixctlProblem only(const std::vector<PlixctlProblem>& problems)
    {
        if (problems.size() != 1) {
            ADD_FAILURE() << problems.size() << " problems";
            for (const PlixctlProblem& problem : problems) {
                ADD_FAILURE() << PlixctlCheck::lineOf(problem);
            }
            return PlixctlProblem{};
        }
        return problems.front();
    }

    PlixConfigTestDir dir;
};

const char* const store = "{\"g\": {\"n\": 7, \"s\": \"text\", \"main\": 80, \"http\": 80, "
                          "\"obj\": {\"a\": 1}, \"pw\": \"abcd\"}}";

std::string dataSet(const std::string& values)
{
    return "<DataSet ID=\"g\"><File>store</File>\n" + values + "\n</DataSet>";
}

} // namespace

TEST_F(PlixctlCheckTest, AnUnreadableXmlFileEndsTheStartWith1)
{
    const std::vector<PlixctlProblem> problems = PlixctlCheck::problemsOf(dir.path("absent.xml"));
    const PlixctlProblem problem = only(problems);
    EXPECT_EQ(problem.exitStatus, 1);
    EXPECT_EQ(problem.message, "Failed to open xml file " + dir.path("absent.xml"));
    EXPECT_EQ(PlixctlCheck::statusOf(problems), PlixctlCheck::wouldNotStart);
}

TEST_F(PlixctlCheckTest, AFileNamingAnUndeclaredStoreFileEndsTheStartWith10AtItsLine)
{
    const PlixctlProblem problem =
        only(check(store, "<DataSet ID=\"g\">\n<File>nosuch</File>\n</DataSet>"));
    EXPECT_EQ(problem.line, 5);
    EXPECT_EQ(problem.exitStatus, 10);
    EXPECT_EQ(problem.message, "nosuch not declared at the beginning of the xml-config-file ");
}

TEST_F(PlixctlCheckTest, AStoreFileThatDoesNotParseEndsTheStartWith1)
{
    const PlixctlProblem problem = only(check("{ \"g\": ", ""));
    EXPECT_EQ(problem.file, dir.path("store.json"));
    EXPECT_EQ(problem.exitStatus, 1);
    EXPECT_EQ(problem.message,
              "cannot open .json file: store under path " + dir.path("store.json"));
}

TEST_F(PlixctlCheckTest, AJpathThatDoesNotResolveEndsTheStartWith5)
{
    const PlixctlProblem problem =
        only(check(store, dataSet("<Value name=\"x\" type=\"int\"><jpath>g.x</jpath></Value>")));
    EXPECT_EQ(problem.file, dir.path("store.json"));
    EXPECT_EQ(problem.jpath, "g.x");
    EXPECT_EQ(problem.subject, "g/x");
    EXPECT_EQ(problem.exitStatus, 5);
    EXPECT_EQ(problem.message, "Could not find json-Node in store under Path : g.x; "
                               "Wrong Path was declared in config-xml under g/x");
}

TEST_F(PlixctlCheckTest, MalformedXmlIsReportedAtItsLineAndTheServiceStarts)
{
    const std::vector<PlixctlProblem> problems = check(store, "<DataSet>\n\n</plix2>");
    const PlixctlProblem problem = only(problems);
    EXPECT_EQ(problem.line, 6);
    EXPECT_EQ(problem.exitStatus, 0);
    EXPECT_EQ(problem.message.rfind("Error: mismatched tag", 0), 0u) << problem.message;
    EXPECT_EQ(PlixctlCheck::statusOf(problems), PlixctlCheck::startsWithWarnings);
}

TEST_F(PlixctlCheckTest, AStoredValueItsValidatorRefusesIsReportedWithTheValidatorsText)
{
    const PlixctlProblem problem = only(check(
        store, dataSet("<Value name=\"n\" type=\"int\"><jpath>g.n</jpath>"
                       "<validation type=\"MinMaxValidator\" min=\"10\" max=\"20\"/></Value>")));
    EXPECT_EQ(problem.jpath, "g.n");
    EXPECT_EQ(problem.subject, "g/n");
    EXPECT_EQ(problem.exitStatus, 0);
    EXPECT_EQ(problem.message, "Validation failed: value for n not beetween 10 and 20!");
}

TEST_F(PlixctlCheckTest, StoredMembersTheDataSetValidatorRefusesAreReportedAtItsLine)
{
    const PlixctlProblem problem =
        only(check(store, "<DataSet ID=\"p\"><File>store</File>\n"
                          "<validation type=\"DataSetPortValidator\"/>\n"
                          "<Value name=\"mainport\" type=\"int\"><jpath>g.main</jpath></Value>\n"
                          "<Value name=\"displayport\" type=\"int\"><jpath>g.n</jpath></Value>\n"
                          "<Value name=\"httpport\" type=\"int\"><jpath>g.http</jpath></Value>\n"
                          "</DataSet>"));
    EXPECT_EQ(problem.line, 5);
    EXPECT_EQ(problem.subject, "p");
    EXPECT_EQ(problem.message,
              "the stored members are refused by the data set's validator (code 203)");
}

TEST_F(PlixctlCheckTest, ADataSetValidatorMissingAMemberIsReportedWithTheStatusOfTheCommit)
{
    const PlixctlProblem problem =
        only(check(store, "<DataSet ID=\"p\"><File>store</File>\n"
                          "<validation type=\"DataSetPortValidator\"/>\n</DataSet>"));
    EXPECT_EQ(problem.line, 5);
    EXPECT_EQ(problem.exitStatus, 0);
    EXPECT_EQ(problem.message,
              "Critical exception in PlixDataSetOnChangeSysconfigNetwork::validate mainport Read: "
              "map::at; the first commit that checks this data set ends the service with "
              "status 16");
}

TEST_F(PlixctlCheckTest, AValueWhoseNodeDoesNotFitItsTypeHasNoContent)
{
    const PlixctlProblem problem = only(
        check(store, dataSet("<Value name=\"obj\" type=\"int\"><jpath>g.obj</jpath></Value>")));
    EXPECT_EQ(problem.jpath, "g.obj");
    EXPECT_EQ(problem.message, "the kind of its node in the store file does not fit the type "
                               "\"int\": it has no content, every read of it answers 11 and "
                               "every set 200");
}

TEST_F(PlixctlCheckTest, ATypeTheServiceDoesNotKnowLeavesTheValueWithoutContent)
{
    const PlixctlProblem problem =
        only(check(store, dataSet("<Value name=\"s\" type=\"text\"><jpath>g.s</jpath></Value>")));
    EXPECT_EQ(problem.subject, "g/s");
    EXPECT_EQ(problem.message, "the type \"text\" is not one the service knows: it has no "
                               "content, every read of it answers 11 and every set 200");
}

TEST_F(PlixctlCheckTest, APasswordFormTooShortForItsSaltIsReported)
{
    const PlixctlProblem problem = only(
        check(store, dataSet("<Value name=\"pw\" type=\"password,sha256,1000\"><jpath>g.pw</jpath>"
                             "</Value>")));
    EXPECT_EQ(problem.jpath, "g.pw");
    EXPECT_EQ(problem.message, "the stored password form is too short to hold its "
                               "60-character salt: no password verifies against it");
}

TEST_F(PlixctlCheckTest, ADefaultItsTypeCannotTakeIsReportedAtItsLine)
{
    const PlixctlProblem problem =
        only(check(store, dataSet("\n<Value name=\"d\" type=\"int\" default=\"12abc\"/>")));
    EXPECT_EQ(problem.line, 6);
    EXPECT_EQ(problem.subject, "g/d");
    EXPECT_EQ(problem.message, "the default \"12abc\" cannot be taken by the type \"int\"");
}

TEST_F(PlixctlCheckTest, TwoValuesWithOneXmlIdAreReportedAtTheSecond)
{
    const PlixctlProblem problem =
        only(check(store, dataSet("<Value name=\"n\" type=\"int\"><jpath>g.n</jpath></Value>\n"
                                  "<Value name=\"n\" type=\"int\"/>")));
    EXPECT_EQ(problem.line, 6);
    EXPECT_EQ(problem.subject, "g/n");
    EXPECT_EQ(problem.message, "the XML-ID is declared twice: this declaration changes the "
                               "first one and the data set lists it twice");
}

TEST_F(PlixctlCheckTest, LinkedValuesOfDifferentTypesAreReported)
{
    const PlixctlProblem problem =
        only(check(store, dataSet("<Value name=\"a\" type=\"int\"><jpath>g.n</jpath></Value>\n"
                                  "<Value name=\"b\" type=\"double\"><jpath>g.n</jpath></Value>")));
    EXPECT_EQ(problem.subject, "g/b");
    EXPECT_EQ(problem.message, "it shares the jpath \"g.n\" with g/a of type \"int\", but is of "
                               "type \"double\"");
}

TEST_F(PlixctlCheckTest, AnExecutePlaceholderNamingNoMemberIsReportedAtItsLine)
{
    const PlixctlProblem problem =
        only(check(store, "<DataSet ID=\"g\"><File>store</File>\n"
                          "<onChange type=\"Execute\" command=\"echo %n %m\"/>\n"
                          "<Value name=\"n\" type=\"int\"><jpath>g.n</jpath></Value>\n"
                          "</DataSet>"));
    EXPECT_EQ(problem.line, 5);
    EXPECT_EQ(problem.subject, "g");
    EXPECT_EQ(problem.message,
              "the Execute placeholder \"%m\" is never filled in: it names no member of the "
              "data set");
}

TEST_F(PlixctlCheckTest, APlaceholderInAShellContextThatCannotBeMadeSafeIsReportedAtItsLine)
{
    const PlixctlProblem problem =
        only(check(store, dataSet("<Value name=\"n\" type=\"int\"><jpath>g.n</jpath>\n"
                                  "<onChange type=\"Execute\" command=\"echo \\%n\"/>\n"
                                  "</Value>\n<Value name=\"m\" type=\"int\" default=\"1\"/>")));
    EXPECT_EQ(problem.line, 6);
    EXPECT_EQ(problem.exitStatus, 0);
    EXPECT_NE(problem.message.find("Execute action of g/n refuses its values: placeholder %n "
                                   "after a backslash in command: echo \\%n"),
              std::string::npos)
        << problem.message;
}

TEST_F(PlixctlCheckTest, AWriteToFileInADirectoryThatDoesNotExistIsReportedAtItsLine)
{
    const std::string file = dir.path("absent/n");
    const PlixctlProblem problem =
        only(check(store, dataSet("<Value name=\"n\" type=\"int\"><jpath>g.n</jpath>\n"
                                  "<onChange type=\"WriteToFile\" filename=\"" +
                                  file + "\"/></Value>")));
    EXPECT_EQ(problem.line, 6);
    EXPECT_EQ(problem.subject, "g/n");
    EXPECT_EQ(problem.message, "the directory \"" + dir.path("absent") +
                                   "\" of the WriteToFile file \"" + file +
                                   "\" does not exist: the action cannot write the file");
}

TEST_F(PlixctlCheckTest, AnActionOnAValueOfAReadOnlyFileIsReportedAtItsLine)
{
    dir.write("ro.json", "{\"r\": 1}");
    const PlixctlProblem problem = only(check(
        store,
        "<DataSet ID=\"r\"><File>ro</File>\n<Value name=\"r\" type=\"int\"><jpath>r</jpath>\n"
        "<onChange type=\"Execute\" command=\"echo %r\"/></Value></DataSet>",
        "\n<Panel_file name=\"ro\" type=\"read_only\">" + dir.path("ro.json") + "</Panel_file>"));
    EXPECT_EQ(problem.line, 7);
    EXPECT_EQ(problem.subject, "r/r");
    EXPECT_EQ(problem.message, "a change action on a value of a read-only store file: every "
                               "set of the value is refused (15), so the action runs only at "
                               "start-up with -s");
}

TEST_F(PlixctlCheckTest, EveryProblemIsReportedNotOnlyTheFirst)
{
    const std::vector<PlixctlProblem> problems =
        check(store, dataSet("<Value name=\"x\" type=\"int\"><jpath>g.x</jpath></Value>\n"
                             "<Value name=\"y\" type=\"int\"><jpath>g.y</jpath></Value>\n"
                             "<Value name=\"obj\" type=\"int\"><jpath>g.obj</jpath></Value>") +
                         "\n<DataSet ID=\"h\"><File>nosuch</File></DataSet>");
    ASSERT_EQ(problems.size(), 4u);
    EXPECT_EQ(problems[0].exitStatus, 10);
    EXPECT_EQ(problems[1].exitStatus, 5);
    EXPECT_EQ(problems[2].exitStatus, 5);
    EXPECT_EQ(problems[3].exitStatus, 0);
}

TEST_F(PlixctlCheckTest, ASoundConfigurationPrintsOkAndAnswers0)
{
    check(store, dataSet("<Value name=\"n\" type=\"int\"><jpath>g.n</jpath></Value>"));
    std::ostringstream out;
    EXPECT_EQ(PlixctlCheck::run(dir.path("plix_config.xml"), false, out), 0);
    EXPECT_EQ(out.str(), dir.path("plix_config.xml") + ": OK\n");
}

TEST_F(PlixctlCheckTest, EachProblemIsOneLineWithItsPlace)
{
    check(store, dataSet("<Value name=\"x\" type=\"int\"><jpath>g.x</jpath></Value>\n"
                         "<Value name=\"d\" type=\"int\" default=\"x\"/>"));
    std::ostringstream out;
    EXPECT_EQ(PlixctlCheck::run(dir.path("plix_config.xml"), false, out), 1);
    const std::string xml = dir.path("plix_config.xml");
    EXPECT_EQ(out.str(),
              xml + ":6: warning: g/d: the default \"x\" cannot be taken by the type \"int\"\n" +
                  dir.path("store.json") +
                  ": jpath g.x: error (status 5): g/x: Could not find json-Node in store under "
                  "Path : g.x; Wrong Path was declared in config-xml under g/x\n" +
                  xml + ": the service would not start on this configuration\n");
}

TEST_F(PlixctlCheckTest, JsonGivesOneDocumentWithTheList)
{
    check(store, dataSet("\n<Value name=\"d\" type=\"int\" default=\"x\"/>"));
    std::ostringstream out;
    EXPECT_EQ(PlixctlCheck::run(dir.path("plix_config.xml"), true, out), 2);
    EXPECT_EQ(out.str(),
              "{\n  \"file\": \"" + dir.path("plix_config.xml") +
                  "\",\n  \"status\": 2,\n  \"problems\": [\n    {\n      \"file\": \"" +
                  dir.path("plix_config.xml") +
                  "\",\n      \"line\": 6,\n      \"subject\": \"g/d\",\n"
                  "      \"severity\": \"warning\",\n      \"message\": \"the default "
                  "\\\"x\\\" cannot be taken by the type \\\"int\\\"\"\n    }\n  ]\n}\n");
}

TEST_F(PlixctlCheckTest, TheExampleConfigurationIsSound)
{
    ASSERT_EQ(mkdir(dir.path("run").c_str(), 0700), 0);
    for (const char* name : {"plix_config.xml", "network.json", "ports.json", "remoteaccess.json",
                             "panel.json", "factory.json"}) {
        std::ifstream in(std::string(PLIX_EXAMPLES_DIR) + "/" + name, std::ios::binary);
        ASSERT_TRUE(in.good()) << name;
        std::ostringstream text;
        text << in.rdbuf();
        std::string content = text.str();
        for (const auto& [from, to] :
             {std::pair<std::string, std::string>{"/etc/orvanta/plix/", dir.path("")},
              {"/run/orvanta/", dir.path("run/")}}) {
            for (std::size_t at = content.find(from); at != std::string::npos;
                 at = content.find(from, at + to.size())) {
                content.replace(at, from.size(), to);
            }
        }
        dir.write(name, content);
    }
    std::ostringstream out;
    EXPECT_EQ(PlixctlCheck::run(dir.path("plix_config.xml"), false, out), 0) << out.str();
}
