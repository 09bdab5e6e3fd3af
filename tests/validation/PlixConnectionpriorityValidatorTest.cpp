#include "PlixConnectionpriorityValidator.h"
#include "PlixTestDataSet.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

unsigned validateChoice(bool disconnect, bool shared, bool refuse)
{
    PlixTestDataSet dataSet;
    dataSet.add("disconnectexistconnections", PlixVariant(disconnect));
    dataSet.add("sharedsessions", PlixVariant(shared));
    dataSet.add("refuseconcurrentconnections", PlixVariant(refuse));
    return PlixConnectionpriorityValidator(dataSet.get()).validate();
}

void expectFatalWithoutMember(const std::string& member)
{
    PlixTestDataSet dataSet;
    for (const char* name :
         {"disconnectexistconnections", "sharedsessions", "refuseconcurrentconnections"}) {
        if (name != member) {
            dataSet.add(name, PlixVariant(false));
        }
    }
    PlixConnectionpriorityValidator validator(dataSet.get());
    EXPECT_EXIT((sendStdoutToStderr(), validator.validate()), testing::ExitedWithCode(16),
                testing::Eq("[ERR] Critical exception in PlixTolvarixPasswordValidator::validate " +
                            member + " Read: map::at\n"));
}

} // namespace

TEST(PlixConnectionpriorityValidator, NoOptionChosenGives207WithoutALogLine)
{
    CaptureStdout();
    EXPECT_EQ(validateChoice(false, false, false), 207u);
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST(PlixConnectionpriorityValidator, OnlySharedSessionsChosenIsValid)
{
    EXPECT_EQ(validateChoice(false, true, false), 0u);
}

TEST(PlixConnectionpriorityValidator, EachSingleOptionIsValid)
{
    EXPECT_EQ(validateChoice(true, false, false), 0u);
    EXPECT_EQ(validateChoice(false, false, true), 0u);
}

TEST(PlixConnectionpriorityValidator, TwoOptionsChosenGive207)
{
    EXPECT_EQ(validateChoice(true, true, false), 207u);
    EXPECT_EQ(validateChoice(false, true, true), 207u);
}

TEST(PlixConnectionpriorityValidator, AllThreeOptionsChosenGive207)
{
    EXPECT_EQ(validateChoice(true, true, true), 207u);
}

TEST(PlixConnectionpriorityValidatorDeathTest,
     MissingDisconnectExistConnectionsEndsTheProcessWith16)
{
    expectFatalWithoutMember("disconnectexistconnections");
}

TEST(PlixConnectionpriorityValidatorDeathTest, MissingSharedSessionsEndsTheProcessWith16)
{
    expectFatalWithoutMember("sharedsessions");
}

TEST(PlixConnectionpriorityValidatorDeathTest,
     MissingRefuseConcurrentConnectionsEndsTheProcessWith16)
{
    expectFatalWithoutMember("refuseconcurrentconnections");
}
