#pragma once

#include <string>

// The engine's pass over the service's command line. The service's entry has
// already acted on "-d"; this pass takes "-s" and "-c FILENAME" and tells
// whether anything else (also "-h") asks for the usage text.
class PlixCommandLine
{
public:
    // Logs every "-c" path as it is met. Parses from the first argument on
    // every call, so a second configuring sees the whole line again.
    PlixCommandLine(int argc, char** argv);

    bool usageRequested() const { return usage; }
    bool triggerOnStart() const { return trigger; }
    bool pathGiven() const { return pathSeen; }
    std::string configPath() const { return path; }

private:
    std::string path;
    bool pathSeen = false;
    bool trigger = false;
    bool usage = false;
};
