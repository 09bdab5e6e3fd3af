#pragma once

#include "PlixClientTimeout.h"
#include "PlixConfirmation.h"
#include "PlixJsonModifier.h"
#include "PlixStoreRetry.h"
#include "PlixValueTable.h"
#include "PlixValueListing.h"
#include "PlixVariant.h"

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class PlixDataSet;
class PlixLoadReport;
class PlixXML_Parser;

// The one engine of the service: owns the configuration model and serves one
// transaction at a time, reads, writes, transient writes and verification.
// Clients are named by their unique bus name; the idle engine holds "-".
// Every operation answers a result code, 0 on success.
class Plix
{
public:
    using ValueMap = PlixValueTable;
    // The configuration file the service reads when no -c names another.
    static constexpr const char* defaultConfigPath = "/etc/orvanta/plix/plix_config.xml";
    // Told after every change that took effect: a commit that changed values
    // (their XML-IDs in the order of the transaction, and its persistent
    // flag) and a transient set (its XML-ID, persistent false).
    using ChangeObserver =
        std::function<void(const std::vector<std::string>& xmlIds, bool persistent)>;

    static Plix* getInstance();
    Plix();
    virtual ~Plix();
    Plix(const Plix&) = delete;
    Plix& operator=(const Plix&) = delete;

    void configure(int argc, char** argv);
    // Builds the model from the XML file at path, the first time only, and
    // reads every stored value, as the service does at start-up; the report
    // hears what stops the loading and where the loader stands.
    void load(const std::string& path, PlixLoadReport& report);
    // The model that load built.
    ValueMap& declaredValues() { return values; }
    const std::vector<PlixDataSet*>& declaredDataSets() const { return dataSets; }
    [[noreturn]] void print_usage();

    int transactionStart(std::string client, bool persistent);
    int transactionStop(std::string client);
    // The same, and names in unstoredFile a store file holding a value of
    // this commit that could not be written (empty when all were written);
    // the commit still answers 0, its values stay applied and the file is
    // tried again.
    int transactionStop(std::string client, std::string& unstoredFile);
    // The same commit, kept only if confirmed within seconds: before the
    // commit the replaced contents go to the rollback file (a file that
    // cannot be written names itself in unstoredFile, and nothing changes);
    // a change that took effect and is stored answers the token of its
    // window. A change that is not stored goes back at once and names its
    // file, and nothing is pending.
    int transactionStopConfirmed(std::string client, unsigned seconds, std::string& unstoredFile,
                                 std::string& token);
    PlixConfirmation& confirmation() { return pendingChange; }
    void clear_plix();
    void client_timeout(int signal);
    static void client_timeout_proxy(int signal);
    int check_for_duplicate_change_values(ValueMap::iterator value);

    int getBoolValue(std::string client, std::string xml_id, bool& value);
    int getIntValue(std::string client, std::string xml_id, int& value);
    int getDoubleValue(std::string client, std::string xml_id, double& value);
    int getStringValue(std::string client, std::string xml_id, std::string& value);
    int getBoolValueTransient(std::string client, std::string xml_id, bool& value);
    int getIntValueTransient(std::string client, std::string xml_id, int& value);
    int getDoubleValueTransient(std::string client, std::string xml_id, double& value);
    int getStringValueTransient(std::string client, std::string xml_id, std::string& value);

    int setBoolValue(std::string client, std::string xml_id, bool value);
    int setIntValue(std::string client, std::string xml_id, int value);
    int setDoubleValue(std::string client, std::string xml_id, double value);
    int setStringValue(std::string client, std::string xml_id, std::string value);
    int setBoolValueTransient(std::string client, std::string xml_id, bool value);
    int setIntValueTransient(std::string client, std::string xml_id, int value);
    int setDoubleValueTransient(std::string client, std::string xml_id, double value);
    int setStringValueTransient(std::string client, std::string xml_id, std::string value);

    int verify(std::string client, std::string xml_id, std::string value);
    int verify(std::string client, std::string xml_id, int value);
    int verify(std::string client, std::string xml_id, double value);
    int verify(std::string client, std::string xml_id, bool value);

    void triggerOnChange();

    void setChangeObserver(ChangeObserver observer);
    std::vector<PlixValueListing::Entry> listValues() const;
    // The store files whose latest write failed, each with its error.
    std::vector<PlixStoreFailure> storeStatus() const;
    // The data-type number of the value's current content; NONE for an
    // XML-ID that is not declared.
    int dataTypeOf(const std::string& xml_id) const;

private:
    bool transactionOpen() const;
    bool isHolder(const std::string& caller) const;
    // The check of transactional reads and verify: 0 for the holder, else 4
    // with no transaction open and otherClientCode for another client.
    int refuseNonHolder(const std::string& caller, int otherClientCode) const;
    void readValuesFromJson();
    unsigned commitChanges(std::string& unstoredFile);
    void recordChange(ValueMap::iterator entry);
    // The contents the open transaction's values had before it: as the
    // store holds them, or in memory for a value outside the store.
    std::vector<PlixRollbackEntry> contentsBeforeChange() const;
    // The engine's own persistent transaction that sets the contents as
    // they are, a password in its stored form.
    int putBack(const std::vector<PlixRollbackEntry>& contents);

    template <typename T>
    int readTyped(const char* operation, const std::string& client, const std::string& xml_id,
                  T& value, bool transient);
    int getvalue_template(std::string client, std::string xml_id, PlixVariant& out);
    int getvalue_transtient_template(std::string client, std::string xml_id, PlixVariant& out);

    int setvalue_template(std::string client, std::string xml_id, PlixVariant value);
    int setvalue_transient_template(std::string client, std::string xml_id, PlixVariant value);
    int verify_template(std::string client, std::string xml_id, PlixVariant value);
    int applyTransient(PlixValue& value);
    unsigned markingSet(PlixValue& target, const PlixVariant& wanted);
    std::vector<PlixDataSet*> markedInDeclarationOrder() const;
    void notifyChanged(const std::vector<std::string>& xmlIds, bool persistent) const;

    std::string client;
    std::unique_ptr<PlixXML_Parser> xmlParser;
    PlixJsonModifier jsonModifier;
    std::vector<PlixDataSet*> dataSets;
    // The data sets a set has marked since the last clear, so that a commit
    // and a clear visit those and not every declared set; the position of
    // each set in the XML keeps their validators and actions in that order.
    std::vector<PlixDataSet*> markedDataSets;
    std::unordered_map<const PlixDataSet*, std::size_t> declarationOrder;
    ValueMap values;
    std::vector<ValueMap::iterator> changedValues;
    // The values in changedValues: a set learns whether its value was set
    // before in this transaction without a walk through the list (only a
    // repeated set still looks for its earlier place), so that a transaction
    // of many sets, or an Apply of many values, does not take time that
    // grows with their square.
    std::unordered_set<const PlixValue*> inTransaction;
    bool persistent;
    std::string xmlConfigPath;
    bool configured;
    bool triggerOnStart;
    PlixClientTimeout timeout;
    ChangeObserver changeObserver;
    PlixStoreRetry storeRetry;
    PlixConfirmation pendingChange;
};
