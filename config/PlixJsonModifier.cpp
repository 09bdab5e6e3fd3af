#include "PlixJsonModifier.h"

#include "PlixDataSet.h"
#include "PlixFile.h"
#include "PlixLoadReport.h"
#include "PlixLog.h"
#include "PlixValue.h"
#include "jzonFile.h"
#include "PlixNumber.h"

#include <cstdlib>

namespace {
bool isDoubleType(const std::string& type)
{
    return type == "double" || type == "float";
}

// The content a string node gives, by the value's declared type; false when
// the type takes no content from a string.
bool contentOfString(const std::string& text, const std::string& type, PlixVariant& content)
{
    if (type == "string") {
        content = PlixVariant(text);
    } else if (type.find("password") != std::string::npos) {
        content = PlixVariant(PlixPassword(text, type, false));
    } else if (type == "int") {
        content = PlixVariant(plixStrtoInt(text.c_str()));
    } else if (type == "bool") {
        content = PlixVariant(text == "true");
    } else if (isDoubleType(type)) {
        content = PlixVariant(std::strtod(text.c_str(), nullptr));
    } else {
        return false;
    }
    return true;
}

// The node's kind decides first, the declared type second: a bool node gives
// a bool content whatever the type says.
bool contentOfNode(const Jzon::Node& node, const std::string& type, PlixVariant& content)
{
    if (node.IsBool()) {
        content = PlixVariant(node.ToBool());
        return true;
    }
    if (node.IsNumber()) {
        if (type == "int") {
            content = PlixVariant(node.ToInt());
            return true;
        }
        if (isDoubleType(type)) {
            content = PlixVariant(node.ToDouble());
            return true;
        }
        return false;
    }
    return node.IsString() && contentOfString(node.ToString(), type, content);
}
} // namespace

PlixJsonModifier::PlixJsonModifier() : report(&PlixLoadReport::service())
{
}

PlixJsonModifier::~PlixJsonModifier() = default;

void PlixJsonModifier::add_panel_file(PlixFile* file)
{
    report->readingFile(*file);
    auto document = std::make_unique<jzonFile>(file->getPath());
    if (!document->read()) {
        plixLog(LOG_ERR, "cannot open .json file: %s under path %s", file->getName().c_str(),
                file->getPath().c_str());
        report->stop(1);
        return;
    }
    recordsByName[file->getName()].push_back(records.size());
    records.push_back(Panel_file{file, std::move(document), PlixRewriteAttempts(file->getPath())});
}

int PlixJsonModifier::get_value(PlixValue* value)
{
    if (records.empty()) {
        return 0;
    }
    bool linked = value->valueInJsonWillBeReadFromPreviousPlixValue();
    const PlixFile* file = value->getDataSet().getFile();
    if (!linked && file != nullptr) {
        auto named = recordsByName.find(file->getName());
        if (named != recordsByName.end()) {
            for (std::size_t index : named->second) {
                readFrom(records[index], value);
            }
        }
    }
    PlixValue* earlier = value->getLinkedPlixValueObject();
    if (linked && earlier != nullptr) {
        value->setValuePtr(earlier->getValuePtr());
        value->setJsonNode(earlier->getJsonNode());
    }
    return 0;
}

void PlixJsonModifier::readFrom(Panel_file& record, PlixValue* value)
{
    report->readingValue(*value);
    std::string jpath = value->getJPath();
    Jzon::Node* node = record.document->findNode(jpath);
    plixLog(LOG_NOTICE, "Read json value under path: %s", jpath.c_str());
    if (node == nullptr) {
        plixLog(LOG_ERR, "Could not find json-Node in %s under Path : %s",
                record.file->getName().c_str(), jpath.c_str());
        plixLog(LOG_ERR, "Wrong Path was declared in config-xml under %s/%s",
                value->getDataSet().getName().c_str(), value->getName().c_str());
        report->stop(5);
        return;
    }
    value->setJsonNode(node);
    PlixVariant content;
    if (contentOfNode(*node, value->getValueType(), content)) {
        value->setDefaultValue(content);
    }
}

bool PlixJsonModifier::storedContent(const PlixValue& value, PlixVariant& content)
{
    const Jzon::Node* node = value.getJsonNode();
    return node != nullptr && contentOfNode(*node, value.getValueType(), content);
}

std::string PlixJsonModifier::firstStorePath() const
{
    return records.empty() ? std::string() : records.front().file->getPath();
}

int PlixJsonModifier::rewrite_json()
{
    int unwritten = 0;
    for (Panel_file& record : records) {
        if (record.file->getType() != "read_only" && record.file->rewrite() && !rewrite(record)) {
            ++unwritten;
        }
    }
    return unwritten;
}

// The document always holds the latest committed content, so a retry writes
// that and not what the first try had. A file being retried is announced
// only by its attempts: a full disk tried again and again adds no lines.
bool PlixJsonModifier::rewrite(Panel_file& record)
{
    if (!record.attempts.failing()) {
        plixLog(LOG_INFO, "Rewriting %s", record.file->getPath().c_str());
    }
    std::string error;
    if (!record.document->write(error)) {
        record.attempts.failed(error);
        return false;
    }
    record.attempts.succeeded();
    record.file->resetReWrite();
    return true;
}

std::vector<PlixStoreFailure> PlixJsonModifier::failingFiles() const
{
    std::vector<PlixStoreFailure> failing;
    for (const Panel_file& record : records) {
        if (record.attempts.failing()) {
            failing.push_back({record.file->getPath(), record.attempts.error()});
        }
    }
    return failing;
}
