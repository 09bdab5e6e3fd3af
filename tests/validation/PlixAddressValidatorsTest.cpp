#include "PlixGatewayValidator.h"
#include "PlixIPAddressValidator.h"
#include "PlixSubnetMaskValidator.h"
#include "PlixTestDataSet.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

// The three address validators only mark a value as an address, a mask or a
// gateway: each accepts every text without a word.
template <typename Validator>
class PlixAddressValidators : public testing::Test
{
};

using PlixAddressValidatorTypes =
    testing::Types<PlixIPAddressValidator, PlixSubnetMaskValidator, PlixGatewayValidator>;
TYPED_TEST_SUITE(PlixAddressValidators, PlixAddressValidatorTypes);

TYPED_TEST(PlixAddressValidators, AcceptsOutOfRangeAndNonNumericTextsSilently)
{
    PlixTestDataSet dataSet;
    PlixValue& address = dataSet.add("address", PlixVariant(""));
    TypeParam validator(address);
    CaptureStdout();
    address.setWantedSetValue(PlixVariant("999.1.1.1"));
    EXPECT_EQ(validator.validate(), 0u);
    address.setWantedSetValue(PlixVariant("abc"));
    EXPECT_EQ(validator.validate(), 0u);
    EXPECT_EQ(GetCapturedStdout(), "");
}

TYPED_TEST(PlixAddressValidators, AcceptsAWellFormedAddressSilently)
{
    PlixTestDataSet dataSet;
    PlixValue& address = dataSet.add("address", PlixVariant(""));
    TypeParam validator(address);
    CaptureStdout();
    address.setWantedSetValue(PlixVariant("192.168.1.1"));
    EXPECT_EQ(validator.validate(), 0u);
    EXPECT_EQ(GetCapturedStdout(), "");
}
