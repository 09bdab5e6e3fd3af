#include "PlixBenchDisk.h"
#include "PlixTestDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>

namespace {
const char* const storeText = "{\n    \"ds0\": {\n        \"v0\": 7\n    }\n}\n";

using Way = bool (PlixBenchDisk::*)() const;

// Each way of writing, as the comparison calls it.
class PlixBenchDiskTest : public testing::TestWithParam<Way>
{
protected:
    void SetUp() override { directory.write("store.json", storeText); }

    std::string copy() const { return directory.file("store.json"); }

    std::size_t filesInDirectory() const
    {
        const std::filesystem::directory_iterator entries(directory.path());
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }

    PlixTestDirectory directory;
};

TEST_P(PlixBenchDiskTest, WritesTheBytesReadAndLeavesNoTemporary)
{
    PlixBenchDisk disk(copy());
    ASSERT_TRUE(disk.read());
    directory.write("store.json", "changed");
    ASSERT_TRUE((disk.*GetParam())());
    EXPECT_EQ(storeText, directory.read("store.json"));
    EXPECT_EQ(1U, filesInDirectory());
}

TEST_P(PlixBenchDiskTest, WriteIntoAMissingDirectoryFails)
{
    PlixBenchDisk disk(copy());
    ASSERT_TRUE(disk.read());
    std::filesystem::remove_all(directory.path());
    EXPECT_FALSE((disk.*GetParam())());
}

INSTANTIATE_TEST_SUITE_P(BothWays, PlixBenchDiskTest,
                         testing::Values(&PlixBenchDisk::replaceAsGlib,
                                         &PlixBenchDisk::replaceAsService));

TEST(PlixBenchDiskReadTest, MissingCopyCannotBeRead)
{
    PlixTestDirectory directory;
    PlixBenchDisk disk(directory.file("missing.json"));
    EXPECT_FALSE(disk.read());
}
} // namespace
