#include "PlixValueOnChangeWriteToFile.h"
#include "PlixTestDataSet.h"
#include "PlixTestDirectory.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

class PlixValueOnChangeWriteToFileTest : public testing::Test
{
protected:
    // Gives the value current and wanted content and runs the action into
    // the file "out" of the test directory.
    unsigned write(const PlixVariant& current, const PlixVariant& wanted)
    {
        level.setValue(current);
        level.setWantedSetValue(wanted);
        action.setPathToFile(directory.file("out"));
        return action.onChange();
    }

    PlixTestDirectory directory;
    PlixTestDataSet dataSet;
    PlixValue& level = dataSet.add("level", PlixVariant(0));
    PlixValueOnChangeWriteToFile action{level};
};

} // namespace

TEST_F(PlixValueOnChangeWriteToFileTest, LogsTheShortNameAndPathAsNotice)
{
    level.setWantedSetValue(PlixVariant(3));
    action.setPathToFile(directory.file("out"));
    CaptureStdout();
    action.onChange();
    EXPECT_EQ(GetCapturedStdout(),
              "[NOT] ValueOnChangeWriteToFile: writing value of level into file " +
                  directory.file("out") + "\n");
}

TEST_F(PlixValueOnChangeWriteToFileTest, DirectoryThatDoesNotExistGives10AfterTheLogLineOnly)
{
    const std::string path = directory.file("missing/out");
    level.setWantedSetValue(PlixVariant(3));
    action.setPathToFile(path);
    CaptureStdout();
    EXPECT_EQ(action.onChange(), 10u);
    EXPECT_EQ(GetCapturedStdout(),
              "[NOT] ValueOnChangeWriteToFile: writing value of level into file " + path + "\n");
}

TEST_F(PlixValueOnChangeWriteToFileTest, DoubleValueTruncatesTheFileToZeroLength)
{
    directory.write("out", "old content");
    EXPECT_EQ(write(PlixVariant(1.5), PlixVariant(2.5)), 0u);
    EXPECT_TRUE(directory.exists("out"));
    EXPECT_EQ(directory.read("out"), "");
}

TEST_F(PlixValueOnChangeWriteToFileTest, BoolIsWrittenAsADigit)
{
    EXPECT_EQ(write(PlixVariant(false), PlixVariant(true)), 0u);
    EXPECT_EQ(directory.read("out"), "1");
    EXPECT_EQ(write(PlixVariant(true), PlixVariant(false)), 0u);
    EXPECT_EQ(directory.read("out"), "0");
}

TEST_F(PlixValueOnChangeWriteToFileTest, IntIsWrittenInDecimalWithoutLineFeed)
{
    EXPECT_EQ(write(PlixVariant(0), PlixVariant(-42)), 0u);
    EXPECT_EQ(directory.read("out"), "-42");
}

TEST_F(PlixValueOnChangeWriteToFileTest, StringIsWrittenByteForByteReplacingTheOldContent)
{
    directory.write("out", "a much longer old content");
    EXPECT_EQ(write(PlixVariant(""), PlixVariant(std::string("a\nb\0c", 5))), 0u);
    EXPECT_EQ(directory.read("out"), std::string("a\nb\0c", 5));
}

TEST_F(PlixValueOnChangeWriteToFileTest, PasswordLeavesTheFileEmpty)
{
    EXPECT_EQ(write(passwordFrom("old"), passwordFrom("secret")), 0u);
    EXPECT_EQ(directory.read("out"), "");
}

TEST_F(PlixValueOnChangeWriteToFileTest, WritesTheWantedNotTheCurrentContent)
{
    EXPECT_EQ(write(PlixVariant(1), PlixVariant(2)), 0u);
    EXPECT_EQ(directory.read("out"), "2");
}

TEST_F(PlixValueOnChangeWriteToFileTest, FormFollowsTheTypeOfTheCurrentContent)
{
    PlixVariant wantedText("x");
    wantedText.setValueBool(true);
    EXPECT_EQ(write(PlixVariant(false), wantedText), 0u);
    EXPECT_EQ(directory.read("out"), "1");
}
