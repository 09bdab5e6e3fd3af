#include "PlixSyslogHeader.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <syslog.h>

namespace {
// Runs with the local time set to UTC, and back to what it was after.
class UtcTime
{
public:
    UtcTime()
    {
        const char* zone = std::getenv("TZ");
        mHadZone = zone != nullptr;
        mZone = mHadZone ? zone : "";
        setenv("TZ", "UTC0", 1);
        tzset();
    }
    ~UtcTime()
    {
        if (mHadZone) {
            setenv("TZ", mZone.c_str(), 1);
        } else {
            unsetenv("TZ");
        }
        tzset();
    }
    UtcTime(const UtcTime&) = delete;
    UtcTime& operator=(const UtcTime&) = delete;

private:
    bool mHadZone = false;
    std::string mZone;
};
} // namespace

TEST(PlixSyslogHeader, APriorityWithoutAFacilityIsInTheUserFacility)
{
    EXPECT_EQ(PlixSyslogHeader::priorityText(LOG_NOTICE), "<13>");
    EXPECT_EQ(PlixSyslogHeader::priorityText(LOG_ERR), "<11>");
    EXPECT_EQ(PlixSyslogHeader::priorityText(LOG_DEBUG), "<15>");
}

TEST(PlixSyslogHeader, APriorityWithAFacilityKeepsIt)
{
    EXPECT_EQ(PlixSyslogHeader::priorityText(LOG_DAEMON | LOG_DEBUG), "<31>");
}

TEST(PlixSyslogHeader, TheStampIsTheLocalTimeThenTheProgramsShortName)
{
    const UtcTime utc;
    PlixSyslogHeader header;
    EXPECT_EQ(header.stampAndIdent(1700000000), "Nov 14 22:13:20 common_tests: ");
}

TEST(PlixSyslogHeader, ADayBelowTenIsPaddedWithASpace)
{
    const UtcTime utc;
    PlixSyslogHeader header;
    EXPECT_EQ(header.stampAndIdent(1699228805), "Nov  6 00:00:05 common_tests: ");
}

TEST(PlixSyslogHeader, ANewSecondGivesANewStamp)
{
    const UtcTime utc;
    PlixSyslogHeader header;
    header.stampAndIdent(1700000000);
    EXPECT_EQ(header.stampAndIdent(1700000001), "Nov 14 22:13:21 common_tests: ");
}
