#include "PlixConfigTestDir.h"
#include "PlixDurableFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sys/stat.h>

namespace {
class PlixDurableFileTest : public testing::Test
{
protected:
    std::set<std::string> entries() const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(dir.path())) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    unsigned modeOf(const std::string& name) const
    {
        struct stat status;
        return stat(dir.path(name).c_str(), &status) == 0 ? status.st_mode & 07777 : 0u;
    }

    PlixConfigTestDir dir;
    std::string error;
};
} // namespace

TEST_F(PlixDurableFileTest, ReplaceWritesTheTextAndLeavesOnlyTheFile)
{
    const std::string path = dir.write("store.json", "old\n");
    EXPECT_TRUE(PlixDurableFile(path).replace("new\n", error)) << error;
    EXPECT_EQ(dir.read("store.json"), "new\n");
    EXPECT_EQ(entries(), std::set<std::string>{"store.json"});
}

TEST_F(PlixDurableFileTest, ReplaceCreatesAFileThatDidNotExist)
{
    EXPECT_TRUE(PlixDurableFile(dir.path("fresh.json")).replace("{}\n", error)) << error;
    EXPECT_EQ(dir.read("fresh.json"), "{}\n");
}

TEST_F(PlixDurableFileTest, ReplaceKeepsThePermissionBitsOfTheOldFile)
{
    const std::string path = dir.write("secret.json", "old\n");
    ASSERT_EQ(chmod(path.c_str(), 0600), 0);
    ASSERT_TRUE(PlixDurableFile(path).replace("new\n", error)) << error;
    EXPECT_EQ(modeOf("secret.json"), 0600u);
}

TEST_F(PlixDurableFileTest, LeftoverOfAnInterruptedRewriteIsReplacedNotReused)
{
    const std::string path = dir.write("secret.json", "old\n");
    ASSERT_EQ(chmod(path.c_str(), 0600), 0);
    const std::string leftover = dir.write("secret.json.plix-new", "half a docu");
    ASSERT_EQ(chmod(leftover.c_str(), 0666), 0);
    ASSERT_TRUE(PlixDurableFile(path).replace("new\n", error)) << error;
    EXPECT_EQ(dir.read("secret.json"), "new\n");
    EXPECT_EQ(modeOf("secret.json"), 0600u);
    EXPECT_EQ(entries(), std::set<std::string>{"secret.json"});
}

TEST_F(PlixDurableFileTest, RemoveLeftoverRemovesTheTemporaryAndNothingElse)
{
    const std::string path = dir.write("store.json", "kept\n");
    dir.write("store.json.plix-new", "half");
    dir.write("store.json.backup", "mine");
    PlixDurableFile(path).removeLeftover();
    EXPECT_EQ(entries(), (std::set<std::string>{"store.json", "store.json.backup"}));
    EXPECT_EQ(dir.read("store.json"), "kept\n");
}

TEST_F(PlixDurableFileTest, ReplaceInAMissingDirectoryFailsWithTheReason)
{
    EXPECT_FALSE(PlixDurableFile(dir.path("gone/store.json")).replace("x", error));
    EXPECT_EQ(error, "No such file or directory");
}

TEST_F(PlixDurableFileTest, ReplaceOverADirectoryFailsAndLeavesNoTemporary)
{
    std::filesystem::create_directory(dir.path("store.json"));
    EXPECT_FALSE(PlixDurableFile(dir.path("store.json")).replace("x", error));
    EXPECT_EQ(error, "Is a directory");
    EXPECT_TRUE(std::filesystem::is_directory(dir.path("store.json")));
    EXPECT_EQ(entries(), std::set<std::string>{"store.json"});
}

TEST_F(PlixDurableFileTest, TemporaryLivesBesideTheFile)
{
    EXPECT_EQ(PlixDurableFile("/etc/plix/store.json").temporaryPath(),
              "/etc/plix/store.json.plix-new");
}
