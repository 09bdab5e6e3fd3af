#include "PlixGatewayValidator.h"
#include "PlixTestDataSet.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

TEST(PlixGatewayValidator, AcceptsOutOfRangeAndNonNumericTextsSilently)
{
    PlixTestDataSet dataSet;
    PlixValue& address = dataSet.add("address", PlixVariant(""));
    PlixGatewayValidator validator(address);
    CaptureStdout();
    address.setWantedSetValue(PlixVariant("999.1.1.1"));
    EXPECT_EQ(validator.validate(), 0u);
    address.setWantedSetValue(PlixVariant("abc"));
    EXPECT_EQ(validator.validate(), 0u);
    EXPECT_EQ(GetCapturedStdout(), "");
}
