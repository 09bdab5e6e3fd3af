#include "PlixLoadReport.h"

#include "PlixLog.h"
#include "PlixShutDown.h"

PlixLoadReport& PlixLoadReport::service()
{
    static PlixLoadReport report;
    return report;
}

void PlixLoadReport::stop(int status)
{
    plixShutDown(status);
}

void PlixLoadReport::malformed(long, const char* expatText)
{
    plixTrace("Error: %s\n", expatText);
}

void PlixLoadReport::afterStartTag(long, const char*, const char**, const PlixXML_Position&)
{
}

void PlixLoadReport::atEndTag(long)
{
}

void PlixLoadReport::aboutLine(long)
{
}

void PlixLoadReport::readingFile(const PlixFile&)
{
}

void PlixLoadReport::readingValue(const PlixValue&)
{
}
