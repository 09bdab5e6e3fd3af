#include "PlixConfigTestDir.h"
#include "PlixDurableFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr uid_t foreignUser = 4321;
constexpr gid_t foreignGroup = 8765;

class PlixDurableFileTest : public testing::Test
{
protected:
    std::set<std::string> entries(const std::string& sub = "") const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(dir.path() + "/" + sub)) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    unsigned modeOf(const std::string& name) const
    {
        struct stat status;
        return stat(dir.path(name).c_str(), &status) == 0 ? status.st_mode & 07777 : 0u;
    }

    bool isLinkTo(const std::string& name, const std::string& target) const
    {
        std::error_code failed;
        return std::filesystem::is_symlink(dir.path(name)) &&
               std::filesystem::read_symlink(dir.path(name), failed) == target;
    }

    // The store's real file under "data", reached from "etc/store.json".
    std::string linkedStore(const std::string& target)
    {
        std::filesystem::create_directory(dir.path("etc"));
        std::filesystem::create_directory(dir.path("data"));
        dir.write("data/store.json", "old\n");
        std::filesystem::create_symlink(target, dir.path("etc/store.json"));
        return dir.path("etc/store.json");
    }

    // Another owner, group and mode than a file the test makes has.
    static bool giveAway(const std::string& path)
    {
        return chown(path.c_str(), foreignUser, foreignGroup) == 0 &&
               chmod(path.c_str(), 0640) == 0;
    }

    void expectGivenAway(const std::string& path)
    {
        struct stat status;
        ASSERT_EQ(lstat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_uid, foreignUser);
        EXPECT_EQ(status.st_gid, foreignGroup);
        EXPECT_EQ(status.st_mode & 07777, 0640u);
    }

    // The link's directory and the target's hold nothing but themselves.
    void expectOnlyLinkAndTarget()
    {
        EXPECT_EQ(dir.read("data/store.json"), "new\n");
        EXPECT_EQ(entries("etc"), std::set<std::string>{"store.json"});
        EXPECT_EQ(entries("data"), std::set<std::string>{"store.json"});
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

TEST_F(PlixDurableFileTest, RelativeLinkStaysALinkAndItsTargetIsReplaced)
{
    const std::string path = linkedStore("../data/store.json");
    ASSERT_TRUE(PlixDurableFile(path).replace("new\n", error)) << error;
    EXPECT_TRUE(isLinkTo("etc/store.json", "../data/store.json"));
    expectOnlyLinkAndTarget();
}

TEST_F(PlixDurableFileTest, AbsoluteLinkStaysALinkAndItsTargetIsReplaced)
{
    const std::string path = linkedStore(dir.path("data/store.json"));
    ASSERT_TRUE(PlixDurableFile(path).replace("new\n", error)) << error;
    EXPECT_TRUE(isLinkTo("etc/store.json", dir.path("data/store.json")));
    expectOnlyLinkAndTarget();
}

TEST_F(PlixDurableFileTest, ChainOfTwoLinksStaysAndTheLastTargetIsReplaced)
{
    std::filesystem::create_directory(dir.path("mid"));
    const std::string path = linkedStore(dir.path("mid/store.json"));
    std::filesystem::create_symlink("../data/store.json", dir.path("mid/store.json"));
    ASSERT_TRUE(PlixDurableFile(path).replace("new\n", error)) << error;
    EXPECT_TRUE(isLinkTo("etc/store.json", dir.path("mid/store.json")));
    EXPECT_TRUE(isLinkTo("mid/store.json", "../data/store.json"));
    EXPECT_EQ(entries("mid"), std::set<std::string>{"store.json"});
    expectOnlyLinkAndTarget();
}

TEST_F(PlixDurableFileTest, LinkToAFileNotYetThereCreatesItWhereTheLinkPoints)
{
    const std::string path = linkedStore("../data/fresh.json");
    ASSERT_TRUE(PlixDurableFile(path).replace("{}\n", error)) << error;
    EXPECT_TRUE(isLinkTo("etc/store.json", "../data/fresh.json"));
    EXPECT_EQ(dir.read("data/fresh.json"), "{}\n");
}

TEST_F(PlixDurableFileTest, ReplaceKeepsTheOwnerAndGroupOfTheOldFile)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root to give a file away";
    }
    const std::string path = dir.write("store.json", "old\n");
    ASSERT_TRUE(giveAway(path));
    ASSERT_TRUE(PlixDurableFile(path).replace("new\n", error)) << error;
    expectGivenAway(path);
}

TEST_F(PlixDurableFileTest, LinkedTargetKeepsItsModeOwnerAndGroup)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root to give a file away";
    }
    const std::string path = linkedStore("../data/store.json");
    ASSERT_TRUE(giveAway(dir.path("data/store.json")));
    ASSERT_TRUE(PlixDurableFile(path).replace("new\n", error)) << error;
    expectGivenAway(dir.path("data/store.json"));
    expectOnlyLinkAndTarget();
}

TEST_F(PlixDurableFileTest, TemporaryAndLeftoverOfALinkLiveBesideItsTarget)
{
    const std::string path = linkedStore("../data/store.json");
    EXPECT_EQ(PlixDurableFile(path).temporaryPath(),
              dir.path("etc/../data/store.json") + ".plix-new");
    dir.write("data/store.json.plix-new", "half");
    PlixDurableFile(path).removeLeftover();
    EXPECT_EQ(entries("data"), std::set<std::string>{"store.json"});
}

TEST_F(PlixDurableFileTest, LinksInACircleFailWithTheReasonAndWriteNothing)
{
    std::filesystem::create_symlink("b.json", dir.path("a.json"));
    std::filesystem::create_symlink("a.json", dir.path("b.json"));
    EXPECT_FALSE(PlixDurableFile(dir.path("a.json")).replace("x", error));
    EXPECT_EQ(error, "Too many levels of symbolic links");
    EXPECT_EQ(entries(), (std::set<std::string>{"a.json", "b.json"}));
}
