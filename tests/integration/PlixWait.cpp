#include "PlixWait.h"

#include <thread>

bool plixWaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds bound,
                   std::chrono::milliseconds interval)
{
    const auto end = std::chrono::steady_clock::now() + bound;
    while (true) {
        if (condition()) {
            return true;
        }
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        std::this_thread::sleep_for(interval);
    }
}
