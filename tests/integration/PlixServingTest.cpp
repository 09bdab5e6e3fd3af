#include "PlixServingTest.h"

void PlixServingTest::SetUp()
{
    PlixIntegrationTest::SetUp();
    if (IsSkipped()) {
        return;
    }
    mService = startServing();
    ASSERT_NE(mService, nullptr);
    mClient = &newClient();
}

void PlixServingTest::syncOutput()
{
    bus().admin().callAdaptor("GetIntValueTransient", g_variant_new("(s)", "sync/none"));
}

nlohmann::json PlixServingTest::storeJson() const
{
    return nlohmann::json::parse(storeText());
}
