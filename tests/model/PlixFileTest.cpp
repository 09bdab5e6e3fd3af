#include "PlixFile.h"

#include <gtest/gtest.h>

TEST(PlixFile, NewFileIsEmpty)
{
    const PlixFile file;
    EXPECT_EQ(file.getName(), "");
    EXPECT_EQ(file.getPath(), "");
    EXPECT_EQ(file.getType(), "");
}

TEST(PlixFile, NewFileNeedsNoRewriteUntilSetReWrite)
{
    PlixFile file;
    EXPECT_FALSE(file.rewrite());
    file.setReWrite();
    EXPECT_TRUE(file.rewrite());
}

TEST(PlixFile, ResetReWriteClearsTheMark)
{
    PlixFile file;
    file.setReWrite();
    file.resetReWrite();
    EXPECT_FALSE(file.rewrite());
}

TEST(PlixFile, NamePathAndTypeAreKept)
{
    PlixFile file;
    file.setName("panel");
    file.setPath("/etc/orvanta/panel.json");
    file.setType("read_only");
    EXPECT_EQ(file.getName(), "panel");
    EXPECT_EQ(file.getPath(), "/etc/orvanta/panel.json");
    EXPECT_EQ(file.getType(), "read_only");
}
