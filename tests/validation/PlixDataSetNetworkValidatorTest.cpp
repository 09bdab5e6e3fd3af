#include "PlixDataSetNetworkValidator.h"
#include "PlixTestDataSet.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

TEST(PlixDataSetNetworkValidator, AcceptsADataSetWithoutReadingAnyMember)
{
    PlixTestDataSet emptyDataSet;
    PlixDataSetNetworkValidator validator(emptyDataSet.get());
    CaptureStdout();
    EXPECT_EQ(validator.validate(), 0u);
    EXPECT_EQ(GetCapturedStdout(), "");
}
