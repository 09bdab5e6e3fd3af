#include "PlixIntegrationTest.h"
#include "PlixMonitorCalls.h"

// A declared value whose stored member does not fit its type has no content;
// reading it is a wrong-type read, never the end of the service.
using MonitorContentlessValue = PlixIntegrationTest;

TEST_F(MonitorContentlessValue, GetValuesOfAValueWithoutContentAnswers11AndTheServiceGoesOn)
{
    dir().write("odd.json", R"({"general": {"label": 5, "count": 4}})");
    const std::string xml = writeXml("odd.xml", R"(<plix>
    <Panel_file name="odd">@DIR@/odd.json</Panel_file>
    <DataSet ID="general">
        <File>odd</File>
        <Value name="label" type="string"><jpath>general.label</jpath></Value>
        <Value name="count" type="int"><jpath>general.count</jpath></Value>
    </DataSet>
</plix>
)");
    PlixServiceProcess& service = start({"-c", xml});
    ASSERT_TRUE(waitServing(service)) << tail(service);
    const PlixMonitorCalls monitor(newClient());

    const auto contentless = monitor.getValues({"general/count", "general/label"});
    EXPECT_EQ(contentless.status, 11);
    EXPECT_TRUE(contentless.values.empty());

    const auto read = monitor.getValues({"general/count"});
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.values,
              (std::vector<std::pair<std::string, std::string>>{{"general/count", "4"}}));
}
