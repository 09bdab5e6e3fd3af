#pragma once

#include "PlixIntegrationTest.h"

#include <nlohmann/json.hpp>

// Tests that need one service serving the test configuration and one client.
class PlixServingTest : public PlixIntegrationTest
{
protected:
    void SetUp() override;

    PlixServiceProcess& service() { return *mService; }
    PlixBusClient& client() { return *mClient; }
    std::vector<std::string> lines() const { return mService->stdoutLines(); }
    // Lets the service's output of the calls made so far settle: a call
    // made after them is answered only once they have been written.
    void syncOutput();

    nlohmann::json storeJson() const;
    std::string storeText() const { return fileText("store.json"); }

private:
    PlixServiceProcess* mService = nullptr;
    PlixBusClient* mClient = nullptr;
};
