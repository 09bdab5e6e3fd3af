#include "PlixSubnetMaskValidator.h"
#include "PlixTestDataSet.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

TEST(PlixSubnetMaskValidator, AcceptsOutOfRangeAndNonNumericTextsSilently)
{
    PlixTestDataSet dataSet;
    PlixValue& address = dataSet.add("address", PlixVariant(""));
    PlixSubnetMaskValidator validator(address);
    CaptureStdout();
    address.setWantedSetValue(PlixVariant("999.1.1.1"));
    EXPECT_EQ(validator.validate(), 0u);
    address.setWantedSetValue(PlixVariant("abc"));
    EXPECT_EQ(validator.validate(), 0u);
    EXPECT_EQ(GetCapturedStdout(), "");
}
