#include "PlixBusFuzzRun.h"

#include <utility>

namespace {
// Long enough for the service's 4-second client time-out to fire.
constexpr guint kSilenceMs = 4500;
constexpr std::size_t kExamplesKept = 10;
constexpr std::size_t kShownTextLength = 60;

struct PlixSilence
{
    PlixBusFuzzRun* run;
    std::size_t client;
};

std::string shortText(GVariant* params)
{
    if (params == nullptr) {
        return "()";
    }
    gchar* text = g_variant_print(params, TRUE);
    std::string shown(text);
    g_free(text);
    if (shown.size() > kShownTextLength) {
        shown = shown.substr(0, kShownTextLength) + "...";
    }
    return shown;
}
} // namespace

PlixBusFuzzRun::PlixBusFuzzRun(std::string address, PlixFuzzCallMaker& maker, std::mt19937& random,
                               int clients)
    : mAddress(std::move(address)), mMaker(maker), mRandom(random), mContext(g_main_context_new()),
      mLoop(g_main_loop_new(mContext, FALSE))
{
    for (int i = 0; i < clients; ++i) {
        mClients.push_back(std::make_unique<PlixBusClient>(mAddress));
    }
}

PlixBusFuzzRun::~PlixBusFuzzRun()
{
    mClients.clear();
    g_main_loop_unref(mLoop);
    g_main_context_unref(mContext);
}

void PlixBusFuzzRun::run(std::chrono::seconds duration)
{
    g_main_context_push_thread_default(mContext);
    mDeadline = std::chrono::steady_clock::now() + duration;
    for (std::size_t i = 0; i < mClients.size(); ++i) {
        ++mBusy;
        next(i);
    }
    // Every call has its own time bound and every silence ends, so the loop
    // always comes back.
    g_main_loop_run(mLoop);
    g_main_context_pop_thread_default(mContext);
}

void PlixBusFuzzRun::next(std::size_t client)
{
    if (std::chrono::steady_clock::now() >= mDeadline) {
        finished();
        return;
    }
    const int which = std::uniform_int_distribution<int>(0, 199)(mRandom);
    if (which < 3) {
        // A new connection is a new client: whatever the old one held is
        // now held by a name that is gone.
        mClients[client] = std::make_unique<PlixBusClient>(mAddress);
        ++mHangUps;
    }
    if (which >= 3 && which < 5) {
        ++mSilences;
        GSource* source = g_timeout_source_new(kSilenceMs);
        g_source_set_callback(source, &PlixBusFuzzRun::onSilenceOver, new PlixSilence{this, client},
                              [](gpointer data) { delete static_cast<PlixSilence*>(data); });
        g_source_attach(source, mContext);
        g_source_unref(source);
        return;
    }
    send(client, which < 50 ? mMaker.transactionStart() : mMaker.next());
}

void PlixBusFuzzRun::send(std::size_t client, PlixFuzzCall call)
{
    GVariant* params = call.params != nullptr ? g_variant_ref_sink(call.params) : nullptr;
    auto* pending = new PlixPendingCall{this, client, std::move(call)};
    g_dbus_connection_call(mClients[client]->connection(), PlixBusClient::kServiceName,
                           pending->call.path.c_str(), pending->call.interface.c_str(),
                           pending->call.method.c_str(), params, nullptr, G_DBUS_CALL_FLAGS_NONE,
                           kCallTimeoutMs, nullptr, &PlixBusFuzzRun::onReply, pending);
    // The arguments are kept for the report of a wrong answer.
    pending->call.params = params;
}

void PlixBusFuzzRun::onReply(GObject* source, GAsyncResult* result, gpointer data)
{
    std::unique_ptr<PlixPendingCall> pending(static_cast<PlixPendingCall*>(data));
    GError* error = nullptr;
    GVariant* reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error);
    pending->run->check(pending->call, reply, error);
    if (reply != nullptr) {
        g_variant_unref(reply);
    }
    if (error != nullptr) {
        g_error_free(error);
    }
    if (pending->call.params != nullptr) {
        g_variant_unref(pending->call.params);
    }
    pending->run->next(pending->client);
}

gboolean PlixBusFuzzRun::onSilenceOver(gpointer data)
{
    const auto* silence = static_cast<PlixSilence*>(data);
    silence->run->next(silence->client);
    return G_SOURCE_REMOVE;
}

void PlixBusFuzzRun::check(const PlixFuzzCall& call, GVariant* reply, GError* error)
{
    ++mAnswered;
    if (!call.expectedError.empty()) {
        gchar* name = error != nullptr ? g_dbus_error_get_remote_error(error) : nullptr;
        const std::string got = name != nullptr ? name : "";
        g_free(name);
        if (got != call.expectedError) {
            complain(call, "expected " + call.expectedError + ", got " +
                               (error != nullptr ? error->message : "a reply"));
        }
        return;
    }
    if (error != nullptr) {
        complain(call, std::string("error ") + error->message);
        return;
    }
    const std::string type = g_variant_get_type_string(reply);
    if (type != call.replyType) {
        complain(call, "reply of type " + type + " instead of " + call.replyType);
        return;
    }
    if (call.statusIndex < 0) {
        return;
    }
    GVariant* child = g_variant_get_child_value(reply, static_cast<gsize>(call.statusIndex));
    const int status = g_variant_get_int32(child);
    g_variant_unref(child);
    ++mCodes[status];
    if (call.allowedCodes.count(status) == 0) {
        complain(call, "status " + std::to_string(status));
    }
}

void PlixBusFuzzRun::complain(const PlixFuzzCall& call, const std::string& what)
{
    ++mWrong;
    if (mWrongExamples.size() < kExamplesKept) {
        mWrongExamples.push_back(call.interface + "." + call.method + shortText(call.params) +
                                 ": " + what);
    }
}

void PlixBusFuzzRun::finished()
{
    if (--mBusy == 0) {
        g_main_loop_quit(mLoop);
    }
}
