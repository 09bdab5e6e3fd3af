#include "PlixctlCommands.h"

#include "PlixctlSecretInput.h"
#include "PlixctlStatus.h"
#include "PlixctlValueText.h"

namespace {
// The VALUE that stands for a password read from standard input.
const char* const fromStandardInput = "-";

std::vector<std::string> idsOf(const std::vector<std::string>& assignments)
{
    std::vector<std::string> ids;
    for (const std::string& assignment : assignments) {
        ids.push_back(assignment.substr(0, assignment.find('=')));
    }
    return ids;
}

std::vector<std::string> idsOf(const std::vector<PlixctlCommands::Change>& changes)
{
    std::vector<std::string> ids;
    for (const PlixctlCommands::Change& change : changes) {
        ids.push_back(change.id);
    }
    return ids;
}

void releaseAll(const std::vector<GVariant*>& values)
{
    for (GVariant* value : values) {
        g_variant_unref(value);
    }
}
} // namespace

PlixctlCommands::PlixctlCommands(PlixctlBusClient& client, PlixctlOutput& output)
    : mClient(client), mOutput(output)
{
}

int PlixctlCommands::list()
{
    const auto values = mClient.listValues();
    if (!values) {
        return mOutput.busFailure(mClient.error());
    }
    mOutput.valueTable(*values);
    return PlixctlStatus::success;
}

int PlixctlCommands::get(const std::vector<std::string>& ids)
{
    const auto reply = mClient.getValues(ids);
    if (!reply) {
        return mOutput.busFailure(mClient.error());
    }
    if (reply->first != 0) {
        // The service answers no values on failure; a single XML-ID is
        // named, several cannot be told apart.
        return mOutput.failure(reply->first, ids.size() == 1 ? ids.front() : "");
    }
    mOutput.values(reply->second.get());
    return PlixctlStatus::success;
}

bool PlixctlCommands::loadTypes(std::map<std::string, std::string>& types)
{
    const auto values = mClient.listValues();
    if (!values) {
        return false;
    }
    for (const auto& value : *values) {
        types.emplace(value.id, value.type);
    }
    return true;
}

GVariant* PlixctlCommands::valueFor(const std::map<std::string, std::string>& types,
                                    const std::string& id, const std::string& text, int* status)
{
    const auto found = types.find(id);
    const std::string type = found != types.end() ? found->second : "";
    std::string given = text;
    if (PlixctlValueText::isPassword(type) && text == fromStandardInput &&
        !PlixctlSecretInput::readLine(id, given)) {
        *status = mOutput.invalidValue(id, "no password on standard input");
        return nullptr;
    }
    std::string problem;
    GVariant* value = PlixctlValueText::fromText(type, given, &problem);
    if (value == nullptr) {
        *status = mOutput.invalidValue(id, problem);
        return nullptr;
    }
    return g_variant_ref_sink(value);
}

int PlixctlCommands::set(const std::vector<std::string>& assignments,
                         PlixctlArguments::SetMode mode, std::optional<unsigned> confirmSeconds)
{
    std::map<std::string, std::string> types;
    if (!loadTypes(types)) {
        return mOutput.busFailure(mClient.error());
    }
    const std::vector<std::string> ids = idsOf(assignments);
    std::vector<Change> changes;
    std::vector<GVariant*> owned;
    int status = PlixctlStatus::success;
    for (std::size_t i = 0; i < assignments.size() && status == PlixctlStatus::success; ++i) {
        const std::string text = assignments[i].substr(ids[i].size() + 1);
        GVariant* value = valueFor(types, ids[i], text, &status);
        if (value != nullptr) {
            owned.push_back(value);
            changes.push_back({ids[i], value});
        }
    }
    if (status == PlixctlStatus::success && mode == PlixctlArguments::SetMode::persistent) {
        status = store(changes, confirmSeconds);
        releaseAll(owned);
        return status;
    }
    if (status == PlixctlStatus::success) {
        status = mode == PlixctlArguments::SetMode::transient ? setTransientOneByOne(changes)
                                                              : applyAll(changes, false);
    }
    releaseAll(owned);
    if (status == PlixctlStatus::success) {
        mOutput.setDone(ids, mode == PlixctlArguments::SetMode::noPersist ? "applied, not stored"
                                                                          : "applied transiently");
    }
    return status;
}

int PlixctlCommands::store(const std::vector<Change>& changes,
                           std::optional<unsigned> confirmSeconds)
{
    if (confirmSeconds) {
        return applyConfirmed(changes, *confirmSeconds);
    }
    const int status = applyAll(changes, true);
    if (status == PlixctlStatus::success) {
        mOutput.setDone(idsOf(changes), "committed");
    }
    return status;
}

GVariant* PlixctlCommands::changesOf(const std::vector<Change>& changes)
{
    GVariantBuilder dict;
    g_variant_builder_init(&dict, G_VARIANT_TYPE_VARDICT);
    for (const Change& change : changes) {
        g_variant_builder_add(&dict, "{sv}", change.id.c_str(), change.value);
    }
    return g_variant_builder_end(&dict);
}

int PlixctlCommands::applyAll(const std::vector<Change>& changes, bool persistent)
{
    const auto result = mClient.apply(changesOf(changes), persistent);
    if (!result) {
        return mOutput.busFailure(mClient.error());
    }
    if (result->code == PlixctlStatus::notStoredCode) {
        return notStored(changes, result->id);
    }
    return result->code == 0 ? PlixctlStatus::success : mOutput.failure(result->code, result->id);
}

// A 17 here names a file and nothing is pending: the change did not take
// effect, or went back at once, so it is reported as a failure.
int PlixctlCommands::applyConfirmed(const std::vector<Change>& changes, unsigned seconds)
{
    std::string token;
    const auto result = mClient.applyConfirmed(changesOf(changes), seconds, token);
    if (!result) {
        return mOutput.busFailure(mClient.error());
    }
    if (result->code != 0) {
        return mOutput.failure(result->code, result->id);
    }
    const std::vector<std::string> ids = idsOf(changes);
    mOutput.awaitingConfirmation(ids, token, seconds);
    return PlixctlStatus::success;
}

// A file that StoreStatus no longer lists was written in between by the
// service's retry.
int PlixctlCommands::notStored(const std::vector<Change>& changes, const std::string& file)
{
    const auto failing = mClient.storeStatus();
    if (!failing) {
        return mOutput.busFailure(mClient.error());
    }
    std::string error = "written since";
    for (const PlixctlStoreFailure& failure : *failing) {
        if (failure.file == file) {
            error = failure.error;
        }
    }
    const std::vector<std::string> ids = idsOf(changes);
    mOutput.notStored(ids, file, error);
    return PlixctlStatus::notStored;
}

// Stops at the first refused value; the ones before it stay applied, as
// transient sets are.
int PlixctlCommands::setTransientOneByOne(const std::vector<Change>& changes)
{
    for (const Change& change : changes) {
        const auto code = mClient.setTransient(change.id, change.value);
        if (!code) {
            return mOutput.busFailure(mClient.error());
        }
        if (*code != 0) {
            return mOutput.failure(*code, change.id);
        }
    }
    return PlixctlStatus::success;
}

int PlixctlCommands::status()
{
    const auto failing = mClient.storeStatus();
    if (!failing) {
        return mOutput.busFailure(mClient.error());
    }
    mOutput.storeStatus(*failing);
    return failing->empty() ? PlixctlStatus::success : PlixctlStatus::notStored;
}

int PlixctlCommands::verify(const std::string& id, const std::string& text)
{
    std::map<std::string, std::string> types;
    if (!loadTypes(types)) {
        return mOutput.busFailure(mClient.error());
    }
    int status = PlixctlStatus::success;
    GVariant* candidate = valueFor(types, id, text, &status);
    if (candidate == nullptr) {
        return status;
    }
    const auto result = verifyInOwnTransaction(candidate, id);
    g_variant_unref(candidate);
    if (!result) {
        return mOutput.busFailure(mClient.error());
    }
    if (result->code != 0) {
        return mOutput.failure(result->code, result->id);
    }
    mOutput.verifyMatched(id);
    return PlixctlStatus::success;
}

// A verify needs a transaction of its own; one kept in memory only, so that
// stopping it writes nothing. A verify that answers neither 0 nor 201 has
// already ended it.
std::optional<PlixctlResult> PlixctlCommands::verifyInOwnTransaction(GVariant* candidate,
                                                                     const std::string& id)
{
    const auto started = mClient.transactionStart(false);
    if (!started) {
        return std::nullopt;
    }
    if (*started != 0) {
        return PlixctlResult{*started, ""};
    }
    const auto code = mClient.verify(candidate, id);
    if (!code) {
        return std::nullopt;
    }
    if ((*code == 0 || *code == 201) && !mClient.transactionStop()) {
        return std::nullopt;
    }
    return PlixctlResult{*code, id};
}

int PlixctlCommands::confirm(const std::string& token)
{
    return reportTokenCall(mClient.confirm(token), "confirmed");
}

int PlixctlCommands::cancel(const std::string& token)
{
    return reportTokenCall(mClient.cancel(token), "cancelled, the old values are back");
}

int PlixctlCommands::reportTokenCall(std::optional<int> code, const char* done)
{
    if (!code) {
        return mOutput.busFailure(mClient.error());
    }
    if (*code != 0) {
        return mOutput.failure(*code, "");
    }
    mOutput.confirmationDone(done);
    return PlixctlStatus::success;
}

int PlixctlCommands::pending()
{
    const auto state = mClient.pending();
    if (!state) {
        return mOutput.busFailure(mClient.error());
    }
    mOutput.pending(*state);
    return PlixctlStatus::success;
}
