#include "PlixChildProcess.h"
#include "PlixIntegrationTest.h"
#include "PlixWait.h"

#ifndef PLIXCTL_BINARY
#error "PLIXCTL_BINARY must be defined by the build"
#endif

namespace {
constexpr std::chrono::seconds kRunBound{20};

const char* const kStorePanel = "<Panel_file name=\"store\">@DIR@/store.json</Panel_file>";

std::string configWith(const std::string& panelFiles, const std::string& dataSets)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plix_config>\n" + panelFiles + "\n" +
           dataSets + "\n</plix_config>\n";
}

std::string generalWith(const std::string& values)
{
    return configWith(kStorePanel,
                      "<DataSet ID=\"general\"><File>store</File>\n" + values + "\n</DataSet>");
}

// What the service did with a configuration: the status it ended its
// start-up with, or none when it came to serve.
struct StartOutcome
{
    bool ended;
    int status;
};
} // namespace

// plixctl check and the real service, each on the same configuration: the
// checker answers 1 exactly when the service ends its start-up on it, and
// names the status it ends with.
class ConfigurationCheck : public PlixIntegrationTest
{
protected:
    StartOutcome startOn(const std::string& xml)
    {
        PlixServiceProcess& service = start({"-c", xml});
        const bool settled = plixWaitUntil(
            [&] {
                return !service.running() ||
                       bus().admin()
                               .callAdaptor("GetIntValueTransient",
                                            g_variant_new("(s)", "probe/none"))
                               .get() != nullptr;
            },
            kStartBound);
        EXPECT_TRUE(settled) << "the service neither served nor ended:\n" << tail(service);
        if (service.running()) {
            return {false, 0};
        }
        return {true, service.waitExit(kExitBound).value_or(-1)};
    }

    int check(const std::string& xml, std::string& out)
    {
        PlixChildProcess ctl({PLIXCTL_BINARY, "check", xml}, {}, dir().file("check.out"),
                             dir().file("check.err"));
        const auto status = ctl.waitExit(kRunBound);
        EXPECT_TRUE(status.has_value()) << "plixctl check did not end";
        out = fileText("check.out");
        return status.value_or(-1);
    }

    void expectAgreement(const std::string& name, const std::string& text)
    {
        writeConfig();
        dir().write("broken.json", "{ \"general\": ");
        expectAgreementOn(writeXml(name + ".xml", text));
    }

    void expectAgreementOn(const std::string& xml)
    {
        std::string report;
        const int checked = check(xml, report);
        const StartOutcome outcome = startOn(xml);
        EXPECT_EQ(checked == 1, outcome.ended) << report;
        if (outcome.ended) {
            EXPECT_NE(report.find("error (status " + std::to_string(outcome.status) + ")"),
                      std::string::npos)
                << report;
        } else {
            EXPECT_NE(checked, 1) << report;
        }
    }
};

TEST_F(ConfigurationCheck, AMissingXmlFile)
{
    expectAgreementOn(dir().file("absent.xml"));
}

TEST_F(ConfigurationCheck, AFileNamingAnUndeclaredStoreFile)
{
    expectAgreement("undeclared-file",
                    configWith(kStorePanel, "<DataSet ID=\"general\"><File>nosuch</File>"
                                            "</DataSet>"));
}

TEST_F(ConfigurationCheck, AStoreFileThatDoesNotParse)
{
    expectAgreement("broken-json",
                    configWith("<Panel_file name=\"b\">@DIR@/broken.json</Panel_file>", ""));
}

TEST_F(ConfigurationCheck, AJpathThatDoesNotResolve)
{
    expectAgreement("missing-jpath", generalWith("<Value name=\"ghost\" type=\"int\">"
                                                 "<jpath>general.ghost</jpath></Value>"));
}

TEST_F(ConfigurationCheck, MalformedXml)
{
    expectAgreement("malformed-xml", configWith(kStorePanel, "<DataSet ID=\"general\">"));
}

TEST_F(ConfigurationCheck, AValueWithoutContent)
{
    expectAgreement("no-content", generalWith("<Value name=\"count\" type=\"text\">"
                                              "<jpath>general.count</jpath></Value>"));
}

TEST_F(ConfigurationCheck, AStoredValueItsValidatorRefuses)
{
    expectAgreement("refused-by-validator",
                    generalWith("<Value name=\"count\" type=\"int\"><jpath>general.count</jpath>"
                                "<validation type=\"MinMaxValidator\" min=\"1000\" "
                                "max=\"2000\"/></Value>"));
}

TEST_F(ConfigurationCheck, ADefaultItsTypeCannotTake)
{
    expectAgreement("bad-default", generalWith("<Value name=\"d\" type=\"int\" default=\"x\"/>"));
}

TEST_F(ConfigurationCheck, ASoundConfiguration)
{
    expectAgreement("sound", generalWith("<Value name=\"count\" type=\"int\">"
                                         "<jpath>general.count</jpath></Value>"));
}
