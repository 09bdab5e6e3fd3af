#include "PlixLog.h"

#include <gtest/gtest.h>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

TEST(PlixLog, ErrorLinesCarryTheErrTag)
{
    CaptureStdout();
    plixLog(LOG_ERR, "Failed to open xml file %s", "/x.xml");
    EXPECT_EQ(GetCapturedStdout(), "[ERR] Failed to open xml file /x.xml\n");
}

TEST(PlixLog, InfoAndDebugLinesCarryTheirTags)
{
    CaptureStdout();
    plixLog(LOG_INFO, "Configuring Plix");
    plixLog(LOG_DEBUG, "Init Main loop");
    EXPECT_EQ(GetCapturedStdout(), "[NFO] Configuring Plix\n[DEB] Init Main loop\n");
}

TEST(PlixLog, WarningAndNoticeShareTheNotTag)
{
    CaptureStdout();
    plixLog(LOG_WARNING, "PLIX is busy");
    plixLog(LOG_NOTICE, "Client timeout!");
    EXPECT_EQ(GetCapturedStdout(), "[NOT] PLIX is busy\n[NOT] Client timeout!\n");
}

TEST(PlixLog, TextEndingInALineFeedPrintsAnEmptyLineAfterIt)
{
    CaptureStdout();
    plixLog(LOG_INFO, "Quit() Method invoked by DBus\n");
    EXPECT_EQ(GetCapturedStdout(), "[NFO] Quit() Method invoked by DBus\n\n");
}

TEST(PlixLog, LongMessagesAreWrittenWhole)
{
    const std::string longText(5000, 'x');
    CaptureStdout();
    plixLog(LOG_NOTICE, "value: %s", longText.c_str());
    EXPECT_EQ(GetCapturedStdout(), "[NOT] value: " + longText + "\n");
}

TEST(PlixLog, TraceWritesWithoutTagOrLineFeed)
{
    CaptureStdout();
    plixTrace("Read value: %s with type %d", "42", 2);
    EXPECT_EQ(GetCapturedStdout(), "Read value: 42 with type 2");
}
