#pragma once

#include "PlixBusClient.h"
#include "PlixFuzzCall.h"

#include <chrono>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

// Many clients of the service at once, each with one call in flight at a
// time, on a private main context: random calls from PlixFuzzCallMaker,
// frequent transaction starts, clients that hang up (often while holding
// the transaction) and clients that fall silent long enough for the
// service's client time-out to fire. Every answer is checked against what
// the call may get.
class PlixBusFuzzRun
{
public:
    static constexpr int kCallTimeoutMs = 30000;

    PlixBusFuzzRun(std::string address, PlixFuzzCallMaker& maker, std::mt19937& random,
                   int clients);
    ~PlixBusFuzzRun();
    PlixBusFuzzRun(const PlixBusFuzzRun&) = delete;
    PlixBusFuzzRun& operator=(const PlixBusFuzzRun&) = delete;

    // Sends calls for this long, then waits for the answers still due.
    void run(std::chrono::seconds duration);

    long answered() const { return mAnswered; }
    long wrong() const { return mWrong; }
    long hangUps() const { return mHangUps; }
    long silences() const { return mSilences; }
    const std::vector<std::string>& wrongExamples() const { return mWrongExamples; }
    // How often each status code came back, over all methods.
    const std::map<int, long>& codes() const { return mCodes; }

private:
    struct PlixPendingCall
    {
        PlixBusFuzzRun* run;
        std::size_t client;
        PlixFuzzCall call;
    };

    void next(std::size_t client);
    void send(std::size_t client, PlixFuzzCall call);
    void check(const PlixFuzzCall& call, GVariant* reply, GError* error);
    void complain(const PlixFuzzCall& call, const std::string& what);
    void finished();
    static void onReply(GObject* source, GAsyncResult* result, gpointer data);
    static gboolean onSilenceOver(gpointer data);

    std::string mAddress;
    PlixFuzzCallMaker& mMaker;
    std::mt19937& mRandom;
    std::vector<std::unique_ptr<PlixBusClient>> mClients;
    GMainContext* mContext;
    GMainLoop* mLoop;
    std::chrono::steady_clock::time_point mDeadline;
    int mBusy = 0;
    long mAnswered = 0;
    long mWrong = 0;
    long mHangUps = 0;
    long mSilences = 0;
    std::vector<std::string> mWrongExamples;
    std::map<int, long> mCodes;
};
