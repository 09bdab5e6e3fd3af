#include "PlixConfigTestDir.h"
#include "jzonFile.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <set>
#include <string>
#include <vector>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {
// The members "k0": 0 to "k<count - 1>": count - 1, comma-separated.
std::string numberedMembers(int count)
{
    std::string members;
    for (int i = 0; i < count; ++i) {
        members += std::string(i == 0 ? "" : ", ") + "\"k" + std::to_string(i) +
                   "\": " + std::to_string(i);
    }
    return members;
}

const char* document = R"({
  "network": {"eth0": {"ip": "10.0.0.1"}},
  "ports": {"list": [80, 443, {"name": "alt"}]},
  "a/b": {"c~d": 1},
  "digits": {"0": "member"},
  "": "empty"
})";

bool writeWithFileSizeLimit(jzonFile& file, rlim_t bytes)
{
    std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit limit;
    limit.rlim_cur = bytes;
    limit.rlim_max = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
    std::string error;
    return file.write(error);
}

class jzonFileTest : public testing::Test
{
protected:
    void SetUp() override
    {
        path = dir.write("store.json", document);
        file = std::make_unique<jzonFile>(path);
        ASSERT_TRUE(file->read());
    }

    std::string textAt(const std::string& jpath)
    {
        Jzon::Node* node = file->findNode(jpath);
        return node == nullptr ? "<none>" : node->ToString();
    }

    bool writeStore()
    {
        std::string error;
        return file->write(error);
    }

    PlixConfigTestDir dir;
    std::string path;
    std::unique_ptr<jzonFile> file;
};
} // namespace

TEST_F(jzonFileTest, DottedPathNamesNestedMembers)
{
    EXPECT_EQ(textAt("network.eth0.ip"), "10.0.0.1");
}

TEST_F(jzonFileTest, DottedPathDigitSegmentIndexesAnArray)
{
    EXPECT_EQ(textAt("ports.list.1"), "443");
    EXPECT_EQ(textAt("ports.list.2.name"), "alt");
}

TEST_F(jzonFileTest, DottedPathDigitSegmentNamesAMemberOfAnObject)
{
    EXPECT_EQ(textAt("digits.0"), "member");
}

TEST_F(jzonFileTest, JsonPointerNamesNestedMembersAndArrayElements)
{
    EXPECT_EQ(textAt("/network/eth0/ip"), "10.0.0.1");
    EXPECT_EQ(textAt("/ports/list/0"), "80");
}

TEST_F(jzonFileTest, JsonPointerUnescapesSlashAndTilde)
{
    EXPECT_EQ(textAt("/a~1b/c~0d"), "1");
}

TEST_F(jzonFileTest, JsonPointerSlashAloneNamesTheEmptyMember)
{
    EXPECT_EQ(textAt("/"), "empty");
}

TEST_F(jzonFileTest, PathsThatDoNotResolveNameNoNode)
{
    for (const char* jpath : {"network.eth1.ip", "ports.list.3", "ports.list.01", "ports.list.-1",
                              "network.eth0.ip.more", "/network/eth1", "/ports/list/-",
                              "/ports/list/01", "/a~2b", "/a~", "network..eth0", "ports.list.x"}) {
        EXPECT_EQ(file->findNode(jpath), nullptr) << jpath;
    }
}

TEST_F(jzonFileTest, TheSameElementAlwaysGivesTheSameNode)
{
    Jzon::Node* first = file->findNode("network.eth0.ip");
    EXPECT_EQ(file->findNode("/network/eth0/ip"), first);
    EXPECT_NE(file->findNode("ports.list.0"), first);
}

TEST_F(jzonFileTest, NodesKeepTheirIdentityAcrossSetsAndWrites)
{
    Jzon::Node* node = file->findNode("ports.list.0");
    node->AsValue().Set(std::string("eighty"));
    ASSERT_TRUE(writeStore());
    EXPECT_EQ(file->findNode("ports.list.0"), node);
    EXPECT_EQ(node->ToString(), "eighty");
}

TEST_F(jzonFileTest, ReadFailsForAMissingFile)
{
    EXPECT_FALSE(jzonFile(dir.path("missing.json")).read());
}

TEST_F(jzonFileTest, ReadFailsForTextThatIsNotJson)
{
    EXPECT_FALSE(jzonFile(dir.write("bad.json", "{\"a\": tru}")).read());
}

TEST_F(jzonFileTest, ReadFailsForADirectory)
{
    EXPECT_FALSE(jzonFile(dir.path()).read());
}

TEST_F(jzonFileTest, ReadRefusesAFifoWithoutBlocking)
{
    ASSERT_EQ(mkfifo(dir.path("fifo").c_str(), 0600), 0);
    EXPECT_FALSE(jzonFile(dir.path("fifo")).read());
}

namespace {
std::string nestedArrays(std::size_t depth)
{
    return std::string(depth, '[') + "7" + std::string(depth, ']');
}
} // namespace

TEST_F(jzonFileTest, ReadsAndRewritesArraysNestedAThousandDeep)
{
    jzonFile deep(dir.write("deep.json", nestedArrays(1000)));
    ASSERT_TRUE(deep.read());
    std::string innermost;
    for (int level = 0; level < 1000; ++level) {
        innermost += "/0";
    }
    Jzon::Node* node = deep.findNode(innermost);
    ASSERT_NE(node, nullptr);
    node->AsValue().Set(8);
    std::string error;
    ASSERT_TRUE(deep.write(error)) << error;
    jzonFile reread(dir.path("deep.json"));
    ASSERT_TRUE(reread.read());
    node = reread.findNode(innermost);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->ToInt(), 8);
}

TEST_F(jzonFileTest, RefusesArraysNestedOneLevelTooDeep)
{
    jzonFile deep(dir.write("deep.json", nestedArrays(1001)));
    EXPECT_FALSE(deep.read());
    EXPECT_EQ(deep.findNode("/0"), nullptr);
}

// Neither the parser nor the check of the depth may recurse: a document far
// deeper than the call stack could take is refused, not a crash.
TEST_F(jzonFileTest, RefusesArraysNestedDeeperThanTheCallStackWouldAllow)
{
    EXPECT_FALSE(jzonFile(dir.write("deep.json", nestedArrays(200000))).read());
}

TEST_F(jzonFileTest, RefusesObjectsNestedDeeperThanTheCallStackWouldAllow)
{
    std::string text;
    for (std::size_t i = 0; i < 200000; ++i) {
        text += "{\"a\": 1, \"b\": 2, \"c\": ";
    }
    text += "3" + std::string(200000, '}');
    EXPECT_FALSE(jzonFile(dir.write("deep.json", text)).read());
}

TEST_F(jzonFileTest, ADeepMemberBesideShallowOnesIsRefusedToo)
{
    const std::string text = "{\"a\": 1, \"b\": [2], \"c\": " + nestedArrays(1000) + "}";
    EXPECT_FALSE(jzonFile(dir.write("deep.json", text)).read());
}

TEST_F(jzonFileTest, EachElementKeepsOneNodeOfItsOwnWhileTheIndexGrows)
{
    jzonFile many(dir.write("many.json", "{" + numberedMembers(1000) + "}"));
    ASSERT_TRUE(many.read());
    std::vector<Jzon::Node*> found;
    for (int i = 0; i < 1000; ++i) {
        found.push_back(many.findNode("k" + std::to_string(i)));
    }
    EXPECT_EQ(std::set<Jzon::Node*>(found.begin(), found.end()).size(), found.size());
    for (int i = 0; i < 1000; ++i) {
        EXPECT_EQ(many.findNode("/k" + std::to_string(i)), found[i]);
        EXPECT_EQ(found[i]->ToInt(), i);
    }
}

TEST_F(jzonFileTest, EveryMemberAndItemIsFoundAfterReadingAGrownDocument)
{
    std::string text = "{\"list\": [";
    for (int i = 0; i < 100; ++i) {
        text += (i == 0 ? "" : ", ") + std::to_string(i);
    }
    text += "], \"m\": {" + numberedMembers(100) + "}}";
    jzonFile grown(dir.write("grown.json", text));
    ASSERT_TRUE(grown.read());
    Jzon::Node* first = grown.findNode("m.k0");
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(grown.findNode("list." + std::to_string(i))->ToInt(), i);
        EXPECT_EQ(grown.findNode("m.k" + std::to_string(i))->ToInt(), i);
    }
    EXPECT_EQ(grown.findNode("/m/k0"), first);
    first->AsValue().Set(-1);
    EXPECT_EQ(grown.findNode("m.k0")->ToInt(), -1);
    EXPECT_EQ(grown.findNode("m.k1")->ToInt(), 1);
}

TEST_F(jzonFileTest, UnresolvedDocumentFindsNothingAfterAFailedRead)
{
    jzonFile bad(dir.write("bad.json", "["));
    EXPECT_FALSE(bad.read());
    EXPECT_EQ(bad.findNode("/"), nullptr);
    EXPECT_EQ(bad.findNode("a"), nullptr);
}

TEST_F(jzonFileTest, WriteKeepsMemberOrderWithFourSpaceIndentAndAFinalLineFeed)
{
    jzonFile small(dir.write("small.json", R"({"z": 1, "a": [true, null], "m": "x"})"));
    ASSERT_TRUE(small.read());
    small.findNode("a.0")->AsValue().Set(false);
    std::string error;
    ASSERT_TRUE(small.write(error)) << error;
    EXPECT_EQ(dir.read("small.json"),
              "{\n    \"z\": 1,\n    \"a\": [\n        false,\n        null\n"
              "    ],\n    \"m\": \"x\"\n}\n");
}

TEST_F(jzonFileTest, WriteKeepsTheFileMode)
{
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    ASSERT_TRUE(writeStore());
    struct stat status;
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_F(jzonFileTest, WriteLeavesNoTemporaryFileBehind)
{
    ASSERT_TRUE(writeStore());
    auto entries = std::distance(std::filesystem::directory_iterator(dir.path()),
                                 std::filesystem::directory_iterator());
    EXPECT_EQ(entries, 1);
}

// The caller logs what it finds worth a line; the write says only why.
TEST_F(jzonFileTest, WriteOverAPathTurnedIntoADirectoryFailsWithTheReasonAndLogsNothing)
{
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    std::string error;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(file->write(error));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(error, "Is a directory");
    EXPECT_TRUE(std::filesystem::is_directory(path));
}

// The file size limit makes the new text fail to reach the disk while the
// old file stays where it is: the one way, for root too, to fail mid-write.
TEST_F(jzonFileTest, FailedWriteLeavesTheOldFileIntact)
{
    file->findNode("network.eth0.ip")->AsValue().Set(std::string(4096, 'x'));
    std::string old = dir.read("store.json");
    EXPECT_EXIT(
        {
            bool written = writeWithFileSizeLimit(*file, 1024);
            std::exit(!written && dir.read("store.json") == old ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(jzonFileTest, ReadRemovesWhatAnInterruptedRewriteLeft)
{
    dir.write("store.json.plix-new", "{\"half\":");
    ASSERT_TRUE(file->read());
    EXPECT_FALSE(dir.exists("store.json.plix-new"));
    EXPECT_EQ(textAt("network.eth0.ip"), "10.0.0.1");
}
