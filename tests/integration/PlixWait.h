#pragma once

#include <chrono>
#include <functional>

// Polls a condition until it holds or the time bound passes; every wait of
// the integration tests goes through here so none can hang a test run.
bool plixWaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds bound,
                   std::chrono::milliseconds interval = std::chrono::milliseconds(10));
