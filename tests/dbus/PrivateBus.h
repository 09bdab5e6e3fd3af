#pragma once

#include <gio/gio.h>

#include <string>

// A private message bus for the tests of this folder, started once per test
// program; nothing of the machine's own buses is touched. Calls are made
// asynchronously and waited for with a bound, because the objects under test
// answer from this same thread's main context.
class PrivateBus
{
public:
    // A new connection with a unique name of its own.
    static GDBusConnection* connect();

    // Calls a method and iterates the default main context until the reply
    // arrives or a few seconds have passed. Returns the reply (nullptr on a
    // bus error or time-out, with the error text in errorText).
    static GVariant* call(GDBusConnection* caller, GDBusConnection* service, const char* path,
                          const char* interface, const char* method, GVariant* arguments,
                          std::string* errorText = nullptr);

    // Iterates the default main context until done is true or the bound
    // passes; answers done.
    static bool iterateUntil(const bool& done);

    // Returns once the bus has handled everything the connection sent
    // before, such as the match rule of a new signal subscription.
    static void roundTrip(GDBusConnection* connection);

private:
    static const char* address();
};
