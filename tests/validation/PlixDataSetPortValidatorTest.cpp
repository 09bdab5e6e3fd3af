#include "PlixDataSetPortValidator.h"
#include "PlixTestDataSet.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

const char* const portMembers[] = {"mainport", "displayport", "httpport"};

// A port data set with every member but the one left out.
void addPortsExcept(PlixTestDataSet& dataSet, const std::string& leftOut)
{
    for (const char* member : portMembers) {
        if (member != leftOut) {
            dataSet.add(member, PlixVariant(102));
        }
    }
}

void expectFatalWithoutMember(const std::string& member)
{
    PlixTestDataSet dataSet;
    addPortsExcept(dataSet, member);
    PlixDataSetPortValidator validator(dataSet.get());
    EXPECT_EXIT(
        (sendStdoutToStderr(), validator.validate()), testing::ExitedWithCode(16),
        testing::Eq("[ERR] Critical exception in PlixDataSetOnChangeSysconfigNetwork::validate " +
                    member + " Read: map::at\n"));
}

unsigned validatePorts(int mainPort, int displayPort, int httpPort)
{
    PlixTestDataSet dataSet;
    dataSet.add("mainport", PlixVariant(mainPort));
    dataSet.add("displayport", PlixVariant(displayPort));
    dataSet.add("httpport", PlixVariant(httpPort));
    return PlixDataSetPortValidator(dataSet.get()).validate();
}

} // namespace

TEST(PlixDataSetPortValidator, MainEqualToDisplayPortIsValid)
{
    EXPECT_EQ(validatePorts(102, 102, 80), 0u);
}

TEST(PlixDataSetPortValidator, MainEqualToHttpPortGives203WithoutALogLine)
{
    CaptureStdout();
    EXPECT_EQ(validatePorts(80, 102, 80), 203u);
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST(PlixDataSetPortValidator, DistinctPortsAreValid)
{
    EXPECT_EQ(validatePorts(102, 8080, 80), 0u);
}

TEST(PlixDataSetPortValidatorDeathTest, MissingMainPortEndsTheProcessWith16)
{
    expectFatalWithoutMember("mainport");
}

TEST(PlixDataSetPortValidatorDeathTest, MissingDisplayPortEndsTheProcessAlthoughItIsNeverCompared)
{
    expectFatalWithoutMember("displayport");
}

TEST(PlixDataSetPortValidatorDeathTest, MissingHttpPortEndsTheProcessWith16)
{
    expectFatalWithoutMember("httpport");
}
