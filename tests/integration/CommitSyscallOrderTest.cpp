// The system calls of one persistent commit of the running service, traced
// with strace in the test's namespaces: a kill proves that the store file is
// replaced atomically, this proves that the commit is on disk before the
// client hears of it. The new file is written and synced, renamed over the
// store file, the directory synced, and only then is the reply sent.

#include "PlixIntegrationTest.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>

namespace {
const char* const kTraced = "openat,write,fsync,fdatasync,rename,renameat,renameat2,sendmsg";

// The completed calls in the order they completed, each without its process
// id; a call that another thread's call interrupted in the trace
// ("<unfinished ...>", later "<... name resumed>") is joined into one.
std::vector<std::string> completedCalls(const std::string& trace)
{
    std::vector<std::string> calls;
    std::map<std::string, std::string> unfinished;
    const std::string cut = " <unfinished ...>";
    for (const std::string& line : PlixTestDir::splitLines(trace)) {
        // The process id, padded with blanks, then the call.
        const std::size_t blank = line.find(' ');
        const std::size_t start = line.find_first_not_of(' ', blank);
        if (start == std::string::npos) {
            continue;
        }
        const std::string thread = line.substr(0, blank);
        std::string call = line.substr(start);
        if (call.size() > cut.size() &&
            call.compare(call.size() - cut.size(), cut.size(), cut) == 0) {
            unfinished[thread] = call.substr(0, call.size() - cut.size());
            continue;
        }
        if (call.rfind("<... ", 0) == 0) {
            const std::size_t resumed = call.find("resumed>");
            call = unfinished[thread] + call.substr(resumed == std::string::npos ? 0 : resumed + 8);
        }
        calls.push_back(call);
    }
    return calls;
}

// The index of the first call from `from` on (or the last before `before`
// when searching backwards) that starts with `name` and holds every part.
class PlixCallIndex
{
public:
    explicit PlixCallIndex(std::vector<std::string> calls) : mCalls(std::move(calls)) {}

    long after(long from, const std::string& name, const std::vector<std::string>& parts) const
    {
        for (long i = std::max(from, 0L); i < static_cast<long>(mCalls.size()); ++i) {
            if (matches(i, name, parts)) {
                return i;
            }
        }
        return -1;
    }

    long size() const { return static_cast<long>(mCalls.size()); }

    long before(long end, const std::string& name, const std::vector<std::string>& parts) const
    {
        for (long i = std::min(end, static_cast<long>(mCalls.size())) - 1; i >= 0; --i) {
            if (matches(i, name, parts)) {
                return i;
            }
        }
        return -1;
    }

private:
    bool matches(long i, const std::string& name, const std::vector<std::string>& parts) const
    {
        const std::string& call = mCalls[static_cast<std::size_t>(i)];
        return call.rfind(name, 0) == 0 &&
               std::all_of(parts.begin(), parts.end(), [&](const std::string& part) {
                   return call.find(part) != std::string::npos;
               });
    }

    std::vector<std::string> mCalls;
};

// LeakSanitizer cannot run in a traced process, so a sanitizer build's
// service is traced without its leak check; every other test checks it.
std::string untracedLeakCheck()
{
    const char* given = std::getenv("ASAN_OPTIONS");
    return given != nullptr && *given != '\0' ? std::string(given) + ":detect_leaks=0"
                                              : "detect_leaks=0";
}
} // namespace

class CommitSyscallOrder : public PlixIntegrationTest
{
protected:
    // Traces one persistent commit of the service on xml and checks its
    // calls; the store file's writes land as storeFile, whatever the path
    // the configuration names (a link) leads there.
    void expectDurableBeforeTheReply(const std::string& xml, const std::string& storeFile)
    {
        const std::string trace = dir().file("commit.strace");
        const std::string wrapper =
            std::string(PLIX_STRACE) + " -f -qq -y -s 400 -e trace=" + kTraced + " -o " + trace;
        PlixServiceProcess& service = start({"-c", xml}, {{"PLIX_SERVICE_WRAPPER", wrapper},
                                                          {"ASAN_OPTIONS", untracedLeakCheck()}});
        ASSERT_TRUE(waitServing(service)) << tail(service);
        PlixBusClient& client = newClient();
        ASSERT_EQ(client.transactionStart(true), 0);
        ASSERT_EQ(client.setInt("general/count", 77), 0);
        ASSERT_EQ(client.transactionStop(), 0);

        // strace shows each descriptor with its file's real path.
        const std::string store = std::filesystem::canonical(storeFile).string();
        const std::string directory = std::filesystem::path(store).parent_path().string();
        const std::string fresh = store + ".plix-new";
        const PlixCallIndex calls(completedCalls(PlixTestDir::readFile(trace)));
        // The rename names the files as the service reached them (through a
        // link's own directory, say); the calls on descriptors show where.
        const std::string name = std::filesystem::path(store).filename().string();
        const long renamed = calls.before(
            calls.size(), "rename", {"/" + name + ".plix-new\", ", "/" + name + "\")", " = 0"});
        ASSERT_GE(renamed, 0) << "no rename of the new file over the store file";
        const long synced = calls.before(renamed, "fsync(", {"<" + fresh + ">)", " = 0"});
        const long written = calls.before(synced, "write(", {"<" + fresh + ">,"});
        const long opened = calls.before(written, "openat(", {"O_CREAT", "<" + fresh + ">"});
        const long directorySynced =
            calls.after(renamed, "fsync(", {"<" + directory + ">)", " = 0"});
        // The reply carries the client's unique name as its destination.
        const long replied = calls.after(opened, "sendmsg(", {client.uniqueName() + "\\0"});
        EXPECT_GE(opened, 0) << "the new file is not created before it is written";
        EXPECT_GE(written, 0) << "the new file is not written before it is synced";
        EXPECT_GE(synced, 0) << "the new file is not synced before the rename";
        EXPECT_GT(directorySynced, renamed) << "the directory is not synced after the rename";
        EXPECT_GT(replied, directorySynced) << "the reply is sent before the directory is synced";
    }

    void SetUp() override
    {
        PlixIntegrationTest::SetUp();
        if (access(PLIX_STRACE, X_OK) != 0) {
            GTEST_SKIP() << "strace is not installed (Debian package strace): " << PLIX_STRACE;
        }
    }
};

TEST_F(CommitSyscallOrder, NewFileSyncedRenamedAndDirectorySyncedBeforeTheReply)
{
    expectDurableBeforeTheReply(writeConfig(), dir().file("store.json"));
}

TEST_F(CommitSyscallOrder, ALinkedStoresTargetSyncedRenamedAndItsDirectorySyncedBeforeTheReply)
{
    const std::string xml = writeLinkedConfig();
    std::filesystem::create_symlink("../data/store.json", dir().file("etc/store.json"));
    expectDurableBeforeTheReply(xml, dir().file("data/store.json"));
}
