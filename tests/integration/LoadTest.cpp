#include "PlixServingTest.h"

#include <chrono>
#include <cstdio>
#include <sstream>

namespace {
// The service's memory is read after a warm-up and again after as many more
// calls of the same mix: by then its heap and GLib's caches have their
// working size, so the second run must not grow it by more than the
// tolerance, while a leak of a few dozen bytes a call still does.
constexpr int kClients = 32;
// The declared constant of the test configuration, and the answer to an
// XML-ID that is not declared.
const char* const kConstantId = "load/constant";
constexpr gint32 kConstant = 7;
constexpr gint32 kUndeclared = 9;
constexpr long kCallsPerRun = 25000;
constexpr long kRssToleranceKiB = 1024;
// A bound against a hang, not a speed limit: the measured run may take this
// many times as long as the warm-up of the same size did, plus the slack.
constexpr int kRunBoundInWarmUps = 4;
constexpr auto kRunBoundSlack = std::chrono::seconds(30);
// The warm-up's own bound.
constexpr auto kWarmUpBound = std::chrono::seconds(150);
constexpr int kCallTimeoutMs = 20000;
// AddressSanitizer holds freed memory back in its quarantine, so a service
// built with it grows by design (scripts/sanitize.sh); the sanitizer checks
// its memory there instead.
#ifdef __SANITIZE_ADDRESS__
constexpr bool kMeasureMemory = false;
#else
constexpr bool kMeasureMemory = true;
#endif

long residentKiB(pid_t pid)
{
    std::istringstream status(PlixTestDir::readFile("/proc/" + std::to_string(pid) + "/status"));
    std::string key;
    long value = -1;
    while (status >> key) {
        if (key == "VmRSS:") {
            status >> value;
            break;
        }
    }
    return value;
}

// One run of asynchronous calls by all clients on a private main context.
// Each client keeps one call in flight and checks every reply against what
// the engine must answer: transient reads of a constant (status 0 and its
// value) and of an undeclared XML-ID (status 9), contended transaction
// starts, and for the winner of a start a set and a commit.
class PlixLoadRun
{
public:
    PlixLoadRun(const std::vector<PlixBusClient*>& clients, long budget)
        : mClients(clients), mBudget(budget), mStates(clients.size())
    {
    }

    // Runs the calls; returns how long they took.
    std::chrono::seconds run(std::chrono::seconds bound)
    {
        const auto begin = std::chrono::steady_clock::now();
        GMainContext* context = g_main_context_new();
        g_main_context_push_thread_default(context);
        mLoop = g_main_loop_new(context, FALSE);
        GSource* boundSource = g_timeout_source_new_seconds(static_cast<guint>(bound.count()));
        g_source_set_callback(boundSource, &PlixLoadRun::onBound, this, nullptr);
        g_source_attach(boundSource, context);
        for (std::size_t i = 0; i < mClients.size(); ++i) {
            next(i);
        }
        if (mInFlight > 0) {
            g_main_loop_run(mLoop);
        }
        g_source_destroy(boundSource);
        g_source_unref(boundSource);
        g_main_loop_unref(mLoop);
        g_main_context_pop_thread_default(context);
        g_main_context_unref(context);
        return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() -
                                                                begin);
    }

    long issued() const { return mIssued; }
    long answered() const { return mAnswered; }
    long wrong() const { return mWrong; }
    long committed() const { return mCommitted; }
    const std::string& firstWrong() const { return mFirstWrong; }
    bool timedOut() const { return mTimedOut; }

private:
    enum class Step { Idle, Setting, Stopping };

    struct PlixCallContext
    {
        PlixLoadRun* run;
        std::size_t client;
        std::string method;
        std::string xmlId;
    };

    static gboolean onBound(gpointer self)
    {
        auto* run = static_cast<PlixLoadRun*>(self);
        run->mTimedOut = true;
        g_main_loop_quit(run->mLoop);
        return G_SOURCE_REMOVE;
    }

    static void onReply(GObject* source, GAsyncResult* result, gpointer data)
    {
        std::unique_ptr<PlixCallContext> call(static_cast<PlixCallContext*>(data));
        GError* error = nullptr;
        PlixGVariantPtr reply(
            g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error));
        if (error != nullptr) {
            call->run->fail(call->method + ": " + error->message);
            g_error_free(error);
        }
        call->run->received(*call, reply.get());
    }

    void call(std::size_t client, const char* method, GVariant* params,
              const std::string& xmlId = "")
    {
        ++mIssued;
        ++mInFlight;
        g_dbus_connection_call(mClients[client]->connection(), PlixBusClient::kServiceName,
                               PlixBusClient::kAdaptorPath, PlixBusClient::kAdaptorInterface,
                               method, params, nullptr, G_DBUS_CALL_FLAGS_NONE, kCallTimeoutMs,
                               nullptr, &PlixLoadRun::onReply,
                               new PlixCallContext{this, client, method, xmlId});
    }

    void next(std::size_t client)
    {
        Step& step = mStates[client];
        if (step == Step::Setting) {
            call(client, "SetIntValue",
                 g_variant_new("(si)", "load/counter", static_cast<gint32>(mIssued % 1000)));
        } else if (step == Step::Stopping) {
            call(client, "Transactionstop", nullptr);
        } else if (mIssued < mBudget) {
            const char* const reads[] = {kConstantId, kConstantId, "load/nothing"};
            const long kind = mIssued % 4;
            if (kind == 3) {
                call(client, "Transactionstart", g_variant_new("(b)", FALSE));
            } else {
                call(client, "GetIntValueTransient", g_variant_new("(s)", reads[kind]),
                     reads[kind]);
            }
        }
    }

    void received(const PlixCallContext& call, GVariant* reply)
    {
        ++mAnswered;
        --mInFlight;
        if (reply != nullptr) {
            check(call, reply);
        }
        next(call.client);
        if (mInFlight == 0) {
            g_main_loop_quit(mLoop);
        }
    }

    void check(const PlixCallContext& call, GVariant* reply)
    {
        const std::string& method = call.method;
        gint32 status = -1;
        gint32 value = -1;
        Step& step = mStates[call.client];
        if (method == "GetIntValueTransient") {
            g_variant_get(reply, "(ii)", &status, &value);
            const bool right = call.xmlId == kConstantId ? status == 0 && value == kConstant
                                                         : status == kUndeclared;
            if (!right) {
                fail("transient read of " + call.xmlId + " replied " + std::to_string(status) +
                     " with " + std::to_string(value));
            }
            return;
        }
        g_variant_get(reply, "(i)", &status);
        if (method == "Transactionstart") {
            if (status != 0 && status != 8) {
                fail("Transactionstart replied " + std::to_string(status));
            }
            step = status == 0 ? Step::Setting : Step::Idle;
            return;
        }
        if (status != 0) {
            fail(method + " replied " + std::to_string(status));
        }
        if (method == "Transactionstop" && status == 0) {
            ++mCommitted;
        }
        step = (method == "SetIntValue" && status == 0) ? Step::Stopping : Step::Idle;
    }

    void fail(const std::string& what)
    {
        if (mWrong++ == 0) {
            mFirstWrong = what;
        }
    }

    std::vector<PlixBusClient*> mClients;
    long mBudget;
    std::vector<Step> mStates;
    GMainLoop* mLoop = nullptr;
    long mIssued = 0;
    long mAnswered = 0;
    long mInFlight = 0;
    long mWrong = 0;
    long mCommitted = 0;
    std::string mFirstWrong;
    bool mTimedOut = false;
};
} // namespace

using Load = PlixServingTest;

TEST_F(Load, ThirtyTwoClientsGetEveryReplyRightWithoutGrowingTheService)
{
    std::vector<PlixBusClient*> clients;
    for (int i = 0; i < kClients; ++i) {
        clients.push_back(&newClient());
    }
    const pid_t pid = servicePid();
    PlixLoadRun warmUp(clients, kCallsPerRun);
    const std::chrono::seconds warmUpTook = warmUp.run(kWarmUpBound);
    ASSERT_FALSE(warmUp.timedOut()) << "the warm-up took over " << kWarmUpBound.count() << " s";
    ASSERT_EQ(warmUp.wrong(), 0) << warmUp.firstWrong();
    const long rssWarm = residentKiB(pid);

    PlixLoadRun load(clients, kCallsPerRun);
    const auto begin = std::chrono::steady_clock::now();
    load.run(kRunBoundInWarmUps * warmUpTook + kRunBoundSlack);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    const long rssAfter = residentKiB(pid);

    std::printf("%ld calls by %d clients in %.2f s: %.0f calls per second, %ld commits; "
                "VmRSS %ld kB after the warm-up, %ld kB after as many more calls\n",
                load.answered(), kClients, took.count(), load.answered() / took.count(),
                load.committed(), rssWarm, rssAfter);
    EXPECT_FALSE(load.timedOut()) << "the run took over " << kRunBoundInWarmUps
                                  << " times the warm-up's " << warmUpTook.count() << " s";
    EXPECT_GE(load.issued(), kCallsPerRun);
    EXPECT_EQ(load.answered(), load.issued());
    EXPECT_EQ(load.wrong(), 0) << load.firstWrong();
    EXPECT_GT(load.committed(), 0);
    if (kMeasureMemory) {
        EXPECT_LE(rssAfter - rssWarm, kRssToleranceKiB)
            << "growth of the resident memory from the end of the warm-up to the end of as "
               "many more calls";
    }
    EXPECT_EQ(client().getIntTransient("load/constant").value, 7);
}
