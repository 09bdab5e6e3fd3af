// The Linux build of sysconfig_set_sysname, run in a child with UTS and
// mount namespaces of its own, where /etc is a private bind mount of a
// temporary directory made by the test.
#include "PlixTestChild.h"
#include "sysconfig.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <climits>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <linux/capability.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
const uint16_t caller = 0xFE02;

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

// The answer and the host name the child sees afterwards.
std::string setAndReport(const char* text, size_t length)
{
    sysconfig_sysname_t name{text, length};
    int answer = sysconfig_set_sysname(caller, &name);
    char host[HOST_NAME_MAX + 1] = {};
    gethostname(host, sizeof host - 1);
    return std::to_string(answer) + " " + host;
}

std::string setAndReport(const std::string& text)
{
    return setAndReport(text.data(), text.size());
}

bool readOnly(const char* mountPoint)
{
    return mount(nullptr, mountPoint, nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) == 0;
}
} // namespace

class SysconfigSetSysnameTest : public testing::Test
{
protected:
    // /etc as a directory of its own, with /etc/hostname a file mounted into
    // place, read-only, or with /etc/hostname a read-only file mounted there.
    enum class Etc { Directory, MountedFile, ReadOnly, ReadOnlyFile };

    void SetUp() override
    {
        if (geteuid() != 0) {
            GTEST_SKIP() << "needs root to make UTS and mount namespaces";
        }
        char pattern[] = "/tmp/plix-sysname-XXXXXX";
        ASSERT_NE(nullptr, mkdtemp(pattern));
        directory = pattern;
        etc = directory + "/etc";
        mkdir(etc.c_str(), 0755);
        writeFile(etc + "/hostname", "old-name\n");
        if (isolated(Etc::Directory, []() { return std::string("isolated"); }) != "isolated") {
            GTEST_SKIP() << "UTS and mount namespaces cannot be made here";
        }
    }

    void TearDown() override
    {
        if (!directory.empty()) {
            std::error_code ignored;
            std::filesystem::remove_all(directory, ignored);
        }
    }

    // Runs the body with its own host name "before-name" and the test's
    // directory in place of /etc.
    std::string isolated(Etc form, const std::function<std::string()>& body)
    {
        std::string source = etc;
        std::string mountedFile = directory + "/mounted-hostname";
        writeFile(mountedFile, "old-name\n");
        PlixTestChild::Result result = PlixTestChild::run([&]() {
            if (unshare(CLONE_NEWUTS | CLONE_NEWNS) != 0 ||
                mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
                mount(source.c_str(), "/etc", nullptr, MS_BIND, nullptr) != 0 ||
                ((form == Etc::MountedFile || form == Etc::ReadOnlyFile) &&
                 mount(mountedFile.c_str(), "/etc/hostname", nullptr, MS_BIND, nullptr) != 0) ||
                (form == Etc::ReadOnly && !readOnly("/etc")) ||
                (form == Etc::ReadOnlyFile && !readOnly("/etc/hostname")) ||
                sethostname("before-name", 11) != 0) {
                return std::string("no namespace");
            }
            return body();
        });
        return result.finished ? result.output : "no child";
    }

    // The answer, host name and printed lines of one call in the isolated child.
    std::pair<std::string, std::string> setCapturing(const std::string& text,
                                                     Etc form = Etc::Directory)
    {
        testing::internal::CaptureStdout();
        std::string report = isolated(form, [&text]() { return setAndReport(text); });
        return {report, testing::internal::GetCapturedStdout()};
    }

    // The answer and host name of a call the kernel refuses, which must say
    // why it failed.
    std::string setRefused(Etc form)
    {
        testing::internal::CaptureStdout();
        std::string report = isolated(form, []() {
            return PlixTestChild::dropCapability(CAP_SYS_ADMIN)
                       ? setAndReport("station-7")
                       : std::string("capabilities unchanged");
        });
        EXPECT_EQ("[ERR] sysconfig_set_sysname: sethostname failed: Operation not permitted\n",
                  testing::internal::GetCapturedStdout());
        return report;
    }

    std::vector<std::string> etcEntries() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(etc)) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }

    std::string directory;
    std::string etc;
};

TEST_F(SysconfigSetSysnameTest, ValidNameSetsHostNameAndWritesEtcHostname)
{
    auto [report, output] = setCapturing("station-7");
    EXPECT_EQ("1 station-7", report);
    EXPECT_EQ("[NFO] sysconfig_set_sysname: host name set to station-7\n", output);
    EXPECT_EQ("station-7\n", readFile(etc + "/hostname"));
    EXPECT_EQ(std::vector<std::string>{"hostname"}, etcEntries());
    struct stat info
    {
    };
    ASSERT_EQ(0, stat((etc + "/hostname").c_str(), &info));
    EXPECT_EQ(0644u, info.st_mode & 0777u);
}

TEST_F(SysconfigSetSysnameTest, HostnameFileMountedIntoPlaceIsRewrittenWhereItIs)
{
    auto [report, output] = setCapturing("station-7", Etc::MountedFile);
    EXPECT_EQ("1 station-7", report);
    EXPECT_EQ("[NFO] sysconfig_set_sysname: host name set to station-7\n", output);
    EXPECT_EQ("station-7\n", readFile(directory + "/mounted-hostname"));
    EXPECT_EQ("old-name\n", readFile(etc + "/hostname"));
    EXPECT_EQ(std::vector<std::string>{"hostname"}, etcEntries());
}

TEST_F(SysconfigSetSysnameTest, NameIsTakenByLengthNotByTerminator)
{
    std::string report = isolated(Etc::Directory, []() { return setAndReport("station-7XYZ", 9); });
    EXPECT_EQ("1 station-7", report);
    EXPECT_EQ("station-7\n", readFile(etc + "/hostname"));
}

TEST_F(SysconfigSetSysnameTest, SixtyThreeCharacterNameIsAccepted)
{
    std::string name = "a" + std::string(61, '-') + "9";
    EXPECT_EQ("1 " + name, setCapturing(name).first);
    EXPECT_EQ(name + "\n", readFile(etc + "/hostname"));
}

TEST_F(SysconfigSetSysnameTest, OneCharacterNameIsAccepted)
{
    EXPECT_EQ("1 X", setCapturing("X").first);
    EXPECT_EQ("X\n", readFile(etc + "/hostname"));
}

TEST_F(SysconfigSetSysnameTest, MissingRecordAnswers0)
{
    testing::internal::CaptureStdout();
    std::string report = isolated(
        Etc::Directory, []() { return std::to_string(sysconfig_set_sysname(caller, nullptr)); });
    EXPECT_EQ("[NOT] sysconfig_set_sysname: not a host name\n",
              testing::internal::GetCapturedStdout());
    EXPECT_EQ("0", report);
}

TEST_F(SysconfigSetSysnameTest, MissingNameTextAnswers0)
{
    std::string report = isolated(Etc::Directory, []() { return setAndReport(nullptr, 4); });
    EXPECT_EQ("0 before-name", report);
    EXPECT_EQ("old-name\n", readFile(etc + "/hostname"));
}

TEST_F(SysconfigSetSysnameTest, ReadOnlyEtcAnswers0AndLeavesTheRunningName)
{
    auto [report, output] = setCapturing("station-7", Etc::ReadOnly);
    EXPECT_EQ("0 before-name", report);
    EXPECT_EQ("[ERR] sysconfig_set_sysname: creating a temporary file in /etc failed: Read-only "
              "file system\n",
              output);
    EXPECT_EQ("old-name\n", readFile(etc + "/hostname"));
}

TEST_F(SysconfigSetSysnameTest, ReadOnlyHostnameFileAnswers0AndLeavesTheRunningName)
{
    auto [report, output] = setCapturing("station-7", Etc::ReadOnlyFile);
    EXPECT_EQ("0 before-name", report);
    EXPECT_EQ("[ERR] sysconfig_set_sysname: opening /etc/hostname failed: Read-only file system\n",
              output);
    EXPECT_EQ("old-name\n", readFile(directory + "/mounted-hostname"));
    EXPECT_EQ(std::vector<std::string>{"hostname"}, etcEntries());
}

TEST_F(SysconfigSetSysnameTest, RefusedSethostnameAnswers0AndPutsTheFileBack)
{
    EXPECT_EQ("0 before-name", setRefused(Etc::Directory));
    EXPECT_EQ("old-name\n", readFile(etc + "/hostname"));
    EXPECT_EQ(std::vector<std::string>{"hostname"}, etcEntries());
}

TEST_F(SysconfigSetSysnameTest, RefusedSethostnamePutsBackAFileMountedIntoPlace)
{
    EXPECT_EQ("0 before-name", setRefused(Etc::MountedFile));
    EXPECT_EQ("old-name\n", readFile(directory + "/mounted-hostname"));
}

TEST_F(SysconfigSetSysnameTest, RefusedSethostnameRemovesAFileThatWasNotThere)
{
    std::filesystem::remove(etc + "/hostname");
    EXPECT_EQ("0 before-name", setRefused(Etc::Directory));
    EXPECT_EQ(std::vector<std::string>{}, etcEntries());
}

TEST_F(SysconfigSetSysnameTest, HostnameFileTooLongToBeKeptAnswers0AndChangesNothing)
{
    const std::string longFile(4096, '#');
    writeFile(etc + "/hostname", longFile);
    auto [report, output] = setCapturing("station-7");
    EXPECT_EQ("0 before-name", report);
    EXPECT_EQ("[ERR] sysconfig_set_sysname: reading /etc/hostname failed: File too large\n",
              output);
    EXPECT_EQ(longFile, readFile(etc + "/hostname"));
}

struct InvalidName
{
    const char* name;
    std::string text;
};

class SysconfigSetSysnameInvalidTest : public SysconfigSetSysnameTest,
                                       public testing::WithParamInterface<InvalidName>
{
};

TEST_P(SysconfigSetSysnameInvalidTest, InvalidNameAnswers0AndChangesNothing)
{
    auto [report, output] = setCapturing(GetParam().text);
    EXPECT_EQ("0 before-name", report);
    EXPECT_EQ("[NOT] sysconfig_set_sysname: not a host name\n", output);
    EXPECT_EQ("old-name\n", readFile(etc + "/hostname"));
    EXPECT_EQ(std::vector<std::string>{"hostname"}, etcEntries());
}

INSTANTIATE_TEST_SUITE_P(
    Names, SysconfigSetSysnameInvalidTest,
    testing::Values(InvalidName{"Empty", ""},
                    InvalidName{"SixtyFourCharacters", std::string(64, 'a')},
                    InvalidName{"LeadingHyphen", "-station"},
                    InvalidName{"TrailingHyphen", "station-"},
                    InvalidName{"Underscore", "sta_tion"}, InvalidName{"Dot", "station.local"},
                    InvalidName{"Blank", "sta tion"}, InvalidName{"NonAscii", "st\xc3\xa4tion"},
                    InvalidName{"EmbeddedNul", std::string("sta\0tion", 8)},
                    InvalidName{"Newline", "station\n"}),
    [](const testing::TestParamInfo<InvalidName>& info) { return std::string(info.param.name); });
