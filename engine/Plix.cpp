#include "Plix.h"

#include "PlixChangeActions.h"
#include "PlixCommandLine.h"
#include "PlixCommit.h"
#include "PlixDataSet.h"
#include "PlixExit.h"
#include "PlixLoadReport.h"
#include "PlixLog.h"
#include "PlixMemory.h"
#include "PlixValueInput.h"
#include "PlixXML_Parser.h"

#include <algorithm>
#include <chrono>
#include <csignal>

namespace {

// The client name the idle engine holds; no bus name looks like it.
const char* const idleClient = "-";
const char* const programName = "dbus-ex-plix";
// The value table is filled once at start-up; this is its initial size.
constexpr std::size_t valueTableBuckets = 11;
// How often a store file that could not be written is tried again.
constexpr std::chrono::milliseconds storeRetryPeriod{30000};

} // namespace

Plix* Plix::getInstance()
{
    static Plix* const instance = new Plix();
    return instance;
}

Plix::Plix()
    : client(idleClient), values(valueTableBuckets), persistent(true), configured(false),
      triggerOnStart(false), timeout([this] { client_timeout(SIGALRM); }),
      storeRetry(storeRetryPeriod, [this] { return jsonModifier.rewrite_json() == 0; }),
      pendingChange(
          [this](const std::vector<PlixRollbackEntry>& contents) { return putBack(contents); })
{
    PlixClientTimeout::installSignalHandler(&Plix::client_timeout_proxy);
}

// The parser owns the data sets, validators and actions that the values
// point to, so it goes first; the values never touch them when destroyed.
Plix::~Plix()
{
    xmlParser.reset();
}

void Plix::configure(int argc, char** argv)
{
    plixLog(LOG_INFO, "Configuring Plix");
    const PlixCommandLine options(argc, argv);
    if (options.usageRequested()) {
        print_usage();
    }
    triggerOnStart = options.triggerOnStart();
    xmlConfigPath = options.configPath();
    if (!options.pathGiven()) {
        xmlConfigPath = defaultConfigPath;
        plixLog(LOG_INFO, "No XML-file specified for Plix. Taking default XML-file, path: %s",
                xmlConfigPath.c_str());
    }
    load(xmlConfigPath, PlixLoadReport::service());
    // Loading reads whole files into memory and frees them again; without a
    // trim those pages would stay with the idle service for its whole run.
    plixReleaseFreedMemory();
    pendingChange.setStore(jsonModifier.firstStorePath());
    pendingChange.restoreAtStart(values);
    if (triggerOnStart) {
        triggerOnChange();
    }
}

// The model is built once; later calls only re-read the stored values.
void Plix::load(const std::string& path, PlixLoadReport& report)
{
    jsonModifier.setLoadReport(report);
    if (!configured) {
        xmlParser = std::make_unique<PlixXML_Parser>(path, "not_created_yet", &values,
                                                     &jsonModifier, &dataSets, &report);
        for (std::size_t position = 0; position < dataSets.size(); ++position) {
            declarationOrder.emplace(dataSets[position], position);
        }
        configured = true;
    }
    readValuesFromJson();
}

void Plix::print_usage()
{
    plixTrace("\nUsage: %s [OPTION]\n\n", programName);
    plixTrace("Options:\n");
    plixTrace("  -s      triggering all onChangeHandler on startup\n");
    plixTrace("  -c FILENAME     uses the xml under this certain path to configure plix\n");
    plixTrace("\n\n");
    plixExit(1);
}

// A linked value takes the content of the value it shares a jpath with, so
// every value that owns its content is read before any linked one.
void Plix::readValuesFromJson()
{
    for (const bool linkedPass : {false, true}) {
        for (auto& entry : values) {
            PlixValue& value = entry.second;
            if (value.inJson() &&
                value.valueInJsonWillBeReadFromPreviousPlixValue() == linkedPass) {
                jsonModifier.get_value(&value);
            }
        }
    }
}

bool Plix::transactionOpen() const
{
    return client != idleClient;
}

bool Plix::isHolder(const std::string& caller) const
{
    return transactionOpen() && caller == client;
}

int Plix::refuseNonHolder(const std::string& caller, int otherClientCode) const
{
    if (!transactionOpen()) {
        plixLog(LOG_WARNING, "No transaction with plix active");
        return 4;
    }
    if (caller != client) {
        plixLog(LOG_WARNING, "Plix is currently busy with another transaction with client %s",
                client.c_str());
        return otherClientCode;
    }
    return 0;
}

int Plix::transactionStart(std::string client, bool persistent)
{
    plixLog(LOG_NOTICE, "transactionStart client: %s persistent: %s", client.c_str(),
            persistent ? "true" : "false");
    // A change that awaits its confirmation holds the engine as a
    // transaction would, so that nothing is built on values that may go back.
    if (transactionOpen() || pendingChange.pending()) {
        plixLog(LOG_WARNING, "Plix is currently busy with another transaction!");
        return 8;
    }
    this->client = std::move(client);
    this->persistent = persistent;
    plixLog(LOG_INFO, "Service registered!");
    timeout.arm();
    return 0;
}

int Plix::transactionStop(std::string client)
{
    std::string unstoredFile;
    return transactionStop(std::move(client), unstoredFile);
}

int Plix::transactionStop(std::string client, std::string& unstoredFile)
{
    plixLog(LOG_NOTICE, "transactionStop client: %s ", client.c_str());
    if (!isHolder(client)) {
        plixLog(LOG_WARNING, "Client is not registered.");
        return 4;
    }
    timeout.cancel();
    if (changedValues.empty()) {
        clear_plix();
        return 0;
    }
    const unsigned result = commitChanges(unstoredFile);
    std::vector<std::string> changedIds;
    for (const ValueMap::iterator& entry : changedValues) {
        changedIds.push_back(entry->first);
    }
    const bool committedPersistent = persistent;
    clear_plix();
    if (result == 0) {
        notifyChanged(changedIds, committedPersistent);
    }
    return static_cast<int>(result);
}

// A store file left unwritten, by this commit or an earlier one, keeps the
// retry timer going until it is written.
unsigned Plix::commitChanges(std::string& unstoredFile)
{
    std::vector<PlixValue*> changed;
    for (const ValueMap::iterator& entry : changedValues) {
        changed.push_back(&entry->second);
    }
    const std::vector<PlixDataSet*> marked = markedInDeclarationOrder();
    PlixCommit commit(changed, marked);
    const unsigned result = commit.run(persistent, jsonModifier);
    unstoredFile = commit.unstoredFile();
    if (!jsonModifier.failingFiles().empty()) {
        storeRetry.arm();
    }
    return result;
}

void Plix::clear_plix()
{
    plixLog(LOG_NOTICE, "Clearing PLIX to be ready for new transactions");
    for (PlixDataSet* dataSet : markedDataSets) {
        dataSet->resetVerify();
    }
    markedDataSets.clear();
    // Given back, not only emptied: a transaction of many values would
    // otherwise keep their room for the rest of the run.
    std::vector<ValueMap::iterator>().swap(changedValues);
    std::unordered_set<const PlixValue*>().swap(inTransaction);
    client = idleClient;
    persistent = true;
    timeout.cancel();
}

void Plix::client_timeout(int)
{
    plixLog(LOG_NOTICE, "Client timeout!");
    clear_plix();
}

void Plix::client_timeout_proxy(int)
{
    PlixClientTimeout::signalExpiry();
}

int Plix::check_for_duplicate_change_values(ValueMap::iterator value)
{
    if (inTransaction.erase(&value->second) == 0) {
        return 0;
    }
    const auto earlier = std::find(changedValues.begin(), changedValues.end(), value);
    if (earlier != changedValues.end()) {
        changedValues.erase(earlier);
    }
    plixLog(LOG_NOTICE,
            "SetValue with same XML-ID was already called this transaction. Taking last parameters "
            "and erasing the ones before");
    return 1;
}

void Plix::triggerOnChange()
{
    plixLog(LOG_NOTICE, "Triggering all onChange handler");
    for (const auto& entry : values) {
        PlixChangeActions::runAtStart(entry.second);
    }
    for (const PlixDataSet* dataSet : dataSets) {
        PlixChangeActions::runAtStart(*dataSet);
    }
}

int Plix::getvalue_template(std::string client, std::string xml_id, PlixVariant& out)
{
    if (const int refused = refuseNonHolder(client, 4)) {
        return refused;
    }
    const auto entry = values.find(xml_id);
    if (entry == values.end()) {
        plixLog(LOG_WARNING, "%s is not declared in the xml", xml_id.c_str());
        clear_plix();
        return 9;
    }
    const PlixVariant stored = entry->second.getValue();
    plixTrace("Read value: %s with type %d\n", stored.getAsString().c_str(), stored.getDataType());
    if (stored.getDataType() != out.getDataType()) {
        clear_plix();
        plixLog(LOG_WARNING, "Requested wrong datatype for %s", xml_id.c_str());
        return 11;
    }
    timeout.arm();
    out = stored;
    return 0;
}

int Plix::getvalue_transtient_template(std::string, std::string xml_id, PlixVariant& out)
{
    const auto entry = values.find(xml_id);
    if (entry == values.end()) {
        return 9;
    }
    const PlixVariant stored = entry->second.getValue();
    if (stored.getDataType() != out.getDataType()) {
        plixLog(LOG_WARNING, "Requested wrong datatype for %s", xml_id.c_str());
        return 11;
    }
    out = stored;
    return 0;
}

int Plix::setvalue_template(std::string client, std::string xml_id, PlixVariant value)
{
    if (!isHolder(client)) {
        plixLog(LOG_WARNING, "PLIX is busy");
        return 4;
    }
    const auto entry = values.find(xml_id);
    if (entry == values.end()) {
        clear_plix();
        plixLog(LOG_WARNING, "%s is not declared in the xml", xml_id.c_str());
        return 9;
    }
    PlixValue& target = entry->second;
    if (PlixValueInput::refusedAsReadOnly(target)) {
        clear_plix();
        return 15;
    }
    const unsigned result =
        markingSet(target, PlixValueInput::storedForm("setValue", client, xml_id, target, value,
                                                      target.getValueType()));
    if (result != 0) {
        clear_plix();
        plixLog(LOG_WARNING, "SetValue failed");
        return static_cast<int>(result);
    }
    timeout.arm();
    const int replaced = check_for_duplicate_change_values(entry);
    recordChange(entry);
    return replaced;
}

void Plix::recordChange(ValueMap::iterator entry)
{
    changedValues.push_back(entry);
    inTransaction.insert(&entry->second);
}

int Plix::setvalue_transient_template(std::string client, std::string xml_id, PlixVariant value)
{
    if (transactionOpen()) {
        plixLog(LOG_WARNING, "PLIX is busy");
        return 8;
    }
    const auto entry = values.find(xml_id);
    if (entry == values.end()) {
        plixLog(LOG_WARNING, "%s is not declared in the xml", xml_id.c_str());
        return 9;
    }
    PlixValue& target = entry->second;
    if (PlixValueInput::refusedAsReadOnly(target)) {
        return 15;
    }
    const unsigned result = markingSet(
        target, PlixValueInput::storedForm("setValueTransient", client, xml_id, target, value,
                                           PlixValueInput::transientPasswordType(target)));
    if (result != 0) {
        return static_cast<int>(result);
    }
    target.setValue(target.getWantedSetValue());
    const int applied = applyTransient(target);
    if (applied == 0) {
        notifyChanged({xml_id}, false);
    }
    return applied;
}

// An accepted set marks its data set, a transient one as well, and the mark
// stays until the next clear, as a commit's validators and actions have always
// seen it. The list holds each marked set once.
unsigned Plix::markingSet(PlixValue& target, const PlixVariant& wanted)
{
    PlixDataSet& dataSet = target.getDataSet();
    const bool wasMarked = dataSet.toVerify();
    const unsigned result = target.setWantedSetValue(wanted);
    if (result == 0 && !wasMarked) {
        markedDataSets.push_back(&dataSet);
    }
    return result;
}

std::vector<PlixDataSet*> Plix::markedInDeclarationOrder() const
{
    std::vector<PlixDataSet*> marked = markedDataSets;
    std::sort(marked.begin(), marked.end(), [this](const PlixDataSet* a, const PlixDataSet* b) {
        return declarationOrder.at(a) < declarationOrder.at(b);
    });
    return marked;
}

int Plix::applyTransient(PlixValue& value)
{
    const unsigned result = PlixChangeActions::runOnChange(value);
    if (result != 0) {
        value.setBackToOldValue();
        plixLog(LOG_WARNING, "Triggering onChange with Value %s failed.", value.getName().c_str());
    }
    return static_cast<int>(result);
}

void Plix::setChangeObserver(ChangeObserver observer)
{
    changeObserver = std::move(observer);
}

void Plix::notifyChanged(const std::vector<std::string>& xmlIds, bool persistent) const
{
    if (changeObserver) {
        changeObserver(xmlIds, persistent);
    }
}

std::vector<PlixValueListing::Entry> Plix::listValues() const
{
    return PlixValueListing::of(dataSets);
}

std::vector<PlixStoreFailure> Plix::storeStatus() const
{
    return jsonModifier.failingFiles();
}

// Through getValue, which gives NONE for a declared value that has no content.
int Plix::dataTypeOf(const std::string& xml_id) const
{
    const auto entry = values.find(xml_id);
    return entry == values.end() ? PlixVariant::NONE : entry->second.getValue().getDataType();
}

int Plix::verify_template(std::string client, std::string xml_id, PlixVariant value)
{
    if (const int refused = refuseNonHolder(client, 8)) {
        return refused;
    }
    const auto entry = values.find(xml_id);
    if (entry == values.end()) {
        clear_plix();
        plixLog(LOG_WARNING, "%s is not declared in the xml", xml_id.c_str());
        return 9;
    }
    PlixValueInput::logVerify(client, xml_id, entry->second);
    const int result = PlixValueInput::compare(xml_id, entry->second, value);
    timeout.arm();
    return result;
}
