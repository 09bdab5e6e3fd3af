#include "OrvantaSystemBus.h"

#include "GDBusInterfaceBase.h"
#include "PlixDaemon.h"
#include "PrivateBus.h"
#include "com.orvanta.dbus.h"

#include <gtest/gtest.h>
#include <sys/sem.h>
#include <unistd.h>

#include <string>
#include <vector>

using com::orvanta::dbus::OrvantaDBusType;
using com::orvanta::dbus::OrvantaSystemBus;

namespace {
std::vector<std::string> events;

// An object that notes when it is connected and configured, and whether
// the object registered before it was already exported at that moment.
class RecordingInterface : public GDBusInterfaceBase
{
public:
    RecordingInterface(std::string name, RecordingInterface* before)
        : GDBusInterfaceBase(reinterpret_cast<GTypeInstance*>(orvanta_dbus_skeleton_new())),
          mName(std::move(name)), mBefore(before)
    {
    }

    void connect_methods() override
    {
        const bool ownExported = exportedAt() != nullptr;
        const bool beforeExported = mBefore == nullptr || mBefore->exportedAt() != nullptr;
        events.push_back("connect " + mName + (ownExported ? " (already exported)" : "") +
                         (beforeExported ? "" : " (earlier object not exported)"));
    }

    void configure(int argc, char** argv) override
    {
        events.push_back("configure " + mName + " " + std::to_string(argc) + " " + argv[0]);
        if (configureHook != nullptr) {
            configureHook();
        }
    }

    const char* exportedAt()
    {
        return g_dbus_interface_skeleton_get_object_path(G_DBUS_INTERFACE_SKELETON(getAdaptor()));
    }

    void (*configureHook)() = nullptr;

private:
    std::string mName;
    RecordingInterface* mBefore;
};

char programName[] = "dbus-ex-plix";
char* arguments[] = {programName, nullptr};

int semaphoreValue(int semid, int semaphore)
{
    return semctl(semid, semaphore, GETVAL);
}

bool semaphoreSetExists(int semid)
{
    struct semid_ds state
    {
    };
    return semctl(semid, 0, IPC_STAT, &state) == 0;
}

// A private set (new sets start at 0) that looks like the one a waiting
// daemon parent leaves: the child's signal taken, the parent's answer given.
int parentWaitingSet()
{
    const int semid = semget(IPC_PRIVATE, 2, 0600);
    struct sembuf answer
    {
    };
    answer.sem_num = 1;
    answer.sem_op = 1;
    semop(semid, &answer, 1);
    return semid;
}

int setDuringConfigure = -1;
int signalSeenDuringConfigure = -1;
int answerSeenDuringConfigure = -1;

// noexcept: like the bus library's C frames, it lets no exception through.
void exportWithOnePathTooFew() noexcept
{
    GDBusConnection* connection = PrivateBus::connect();
    RecordingInterface ctrl("ctrl", nullptr);
    OrvantaSystemBus::m_interfaces = {&ctrl, &ctrl};
    OrvantaSystemBus::m_path = {"/ctrl"};
    OrvantaSystemBus::on_name_acquired(connection, "com.orvanta.plix", nullptr);
}

void noteSemaphores()
{
    signalSeenDuringConfigure = semaphoreValue(setDuringConfigure, 0);
    answerSeenDuringConfigure = semaphoreValue(setDuringConfigure, 1);
}
} // namespace

class OrvantaSystemBusTest : public testing::Test
{
protected:
    void SetUp() override
    {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        OrvantaSystemBus::m_path.clear();
        OrvantaSystemBus::m_interfaces.clear();
        OrvantaDBusType::m_configureable_interfaces.clear();
        OrvantaDBusType::mSemid = -1;
        OrvantaDBusType::mReleaseParent = releaseParent;
        events.clear();
    }

    void TearDown() override
    {
        OrvantaSystemBus::m_path.clear();
        OrvantaSystemBus::m_interfaces.clear();
        OrvantaDBusType::m_configureable_interfaces.clear();
        OrvantaDBusType::mSemid = -1;
        OrvantaDBusType::mReleaseParent = nullptr;
    }

    OrvantaSystemBus bus;
};

TEST_F(OrvantaSystemBusTest, RegisterServiceWithNothingRegisteredExitsWithStatus3)
{
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            bus.registerService("com.orvanta.plix", nullptr);
        },
        testing::ExitedWithCode(3), "(^|\n)\\[ERR\\] No Interfaces Registered\n$");
}

TEST_F(OrvantaSystemBusTest, RegisterObjectAppendsPathAndObjectWithoutRefusingDuplicates)
{
    RecordingInterface first("first", nullptr);
    EXPECT_TRUE(bus.registerObject("/ctrl", &first));
    EXPECT_TRUE(bus.registerObject("/ctrl", &first));
    ASSERT_EQ(OrvantaSystemBus::m_path, (std::vector<std::string>{"/ctrl", "/ctrl"}));
    EXPECT_EQ(OrvantaSystemBus::m_interfaces, (std::vector<GDBusInterfaceBase*>{&first, &first}));
}

TEST_F(OrvantaSystemBusTest, NameLostExitsWithStatus2)
{
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            OrvantaSystemBus::on_name_lost(nullptr, "com.orvanta.plix", nullptr);
        },
        testing::ExitedWithCode(2), "(^|\n)\\[ERR\\] Could not register servicename on bus\n$");
}

TEST_F(OrvantaSystemBusTest, NameLostInDaemonModeReleasesParentRemovesSetAndExitsWithStatus2)
{
    // The child must act on this very set, so it is forked, not re-run.
    GTEST_FLAG_SET(death_test_style, "fast");
    const int semid = parentWaitingSet();
    ASSERT_GE(semid, 0);
    OrvantaDBusType::mSemid = semid;
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            OrvantaSystemBus::on_name_lost_sem_locked(nullptr, "com.orvanta.plix", nullptr);
        },
        testing::ExitedWithCode(2), "(^|\n)\\[ERR\\] Could not register servicename on bus\n$");
    EXPECT_FALSE(semaphoreSetExists(semid));
    semctl(semid, 0, IPC_RMID);
}

TEST_F(OrvantaSystemBusTest, NameLostAfterTheDaemonsStartUpExitsWithStatus2AndNoSemaphoreError)
{
    GTEST_FLAG_SET(death_test_style, "fast");
    const int semid = parentWaitingSet();
    ASSERT_GE(semid, 0);
    OrvantaDBusType::mSemid = semid;
    OrvantaSystemBus::on_name_acquired_sem_locked(nullptr, "com.orvanta.plix", nullptr);
    ASSERT_FALSE(semaphoreSetExists(semid));
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            OrvantaSystemBus::on_name_lost_sem_locked(nullptr, "com.orvanta.plix", nullptr);
        },
        testing::ExitedWithCode(2), "(^|\n)\\[ERR\\] Could not register servicename on bus\n$");
}

TEST_F(OrvantaSystemBusTest, ObjectsAreExportedInRegistrationOrderEachRightAfterItsConnect)
{
    GDBusConnection* connection = PrivateBus::connect();
    ASSERT_NE(connection, nullptr);
    RecordingInterface ctrl("ctrl", nullptr);
    RecordingInterface plix("plix", &ctrl);
    bus.registerObject("/ctrl", &ctrl);
    bus.registerObject("/plix", &plix);
    OrvantaDBusType::set_configure_options(&plix, 1, arguments);

    OrvantaSystemBus::on_name_acquired(connection, "com.orvanta.plix", nullptr);

    EXPECT_EQ(events, (std::vector<std::string>{"connect ctrl", "connect plix",
                                                "configure plix 1 dbus-ex-plix"}));
    EXPECT_STREQ(ctrl.exportedAt(), "/ctrl");
    EXPECT_STREQ(plix.exportedAt(), "/plix");
    g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(ctrl.getAdaptor()));
    g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(plix.getAdaptor()));
    g_object_unref(connection);
}

TEST_F(OrvantaSystemBusTest, DaemonChildConfiguresBetweenReleasingAndAnsweringParent)
{
    GDBusConnection* connection = PrivateBus::connect();
    ASSERT_NE(connection, nullptr);
    const int semid = parentWaitingSet();
    ASSERT_GE(semid, 0);
    OrvantaDBusType::mSemid = semid;
    setDuringConfigure = semid;
    RecordingInterface plix("plix", nullptr);
    plix.configureHook = noteSemaphores;
    bus.registerObject("/plix", &plix);
    OrvantaDBusType::set_configure_options(&plix, 1, arguments);

    OrvantaSystemBus::on_name_acquired_sem_locked(connection, "com.orvanta.plix", nullptr);

    EXPECT_EQ(events, (std::vector<std::string>{"connect plix", "configure plix 1 dbus-ex-plix"}));
    EXPECT_EQ(signalSeenDuringConfigure, 1) << "the parent was not woken before configuring";
    EXPECT_EQ(answerSeenDuringConfigure, 0) << "the parent's answer was not taken first";
    EXPECT_FALSE(semaphoreSetExists(semid));
    semctl(semid, 0, IPC_RMID);
    g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(plix.getAdaptor()));
    g_object_unref(connection);
}

TEST_F(OrvantaSystemBusTest, PathListShorterThanObjectListEndsTheProcess)
{
    EXPECT_DEATH(exportWithOnePathTooFew(), "out_of_range");
}
