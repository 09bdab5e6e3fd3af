#pragma once

#include <gio/gio.h>

#include <random>
#include <set>
#include <string>
#include <vector>

// One call the bus fuzzer sends and what the service may answer to it.
struct PlixFuzzCall
{
    std::string path;
    std::string interface;
    std::string method;
    // Floating reference, consumed by the call; null for no arguments.
    GVariant* params = nullptr;
    // A refusal by the interface glue is the only right answer: the D-Bus
    // error expected (arguments of the wrong types, an unknown method).
    std::string expectedError;
    // Where the status code sits in the reply tuple, -1 for a reply without
    // one, and the codes the service may give.
    int statusIndex = -1;
    std::set<int> allowedCodes;
    // The type the reply must have (checked when the call is not refused).
    std::string replyType;
};

// Draws random, often hostile calls of every method of every interface of
// the service: undeclared and huge XML-IDs, empty and 1 MiB texts, extreme
// numbers, every variant type to Verify, wrong argument types.
class PlixFuzzCallMaker
{
public:
    PlixFuzzCallMaker(std::mt19937& random, std::vector<std::string> declaredIds, bool withMonitor);

    PlixFuzzCall next();
    // A call that starts a transaction; the fuzzer sends many of them so that
    // transactions are open most of the time.
    PlixFuzzCall transactionStart();

private:
    PlixFuzzCall adaptorCall();
    PlixFuzzCall monitorCall();
    PlixFuzzCall controlCall();
    PlixFuzzCall wrongTypes(PlixFuzzCall call, const std::string& rightType);

    int chance(int outOf) { return std::uniform_int_distribution<int>(0, outOf - 1)(mRandom); }
    GVariant* valueOf(const std::string& type);
    std::string anyId();
    std::string anyText();
    std::string unicodeText(std::size_t length);
    gint32 anyInt();
    double anyDouble();
    GVariant* anyVariant(int depth);
    GVariant* anyBasic();

    std::mt19937& mRandom;
    std::vector<std::string> mIds;
    bool mWithMonitor;
};
