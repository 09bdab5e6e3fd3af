#include "PlixctlOutput.h"

#include "PlixctlStatus.h"
#include "PlixctlValueText.h"

#include <algorithm>
#include <ctime>
#include <iomanip>

namespace {

const char* const passwordShown = "(password)";

std::string prefixed(const std::string& id, const std::string& text)
{
    return "plixctl: " + (id.empty() ? "" : id + ": ") + text;
}

// The moment that many seconds from now, in UTC, as ISO 8601.
std::string deadlineIn(unsigned seconds)
{
    const std::time_t at = std::time(nullptr) + static_cast<std::time_t>(seconds);
    std::tm parts{};
    gmtime_r(&at, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

std::string joined(const std::vector<std::string>& ids)
{
    std::string text;
    for (const std::string& id : ids) {
        text += (text.empty() ? "" : " ") + id;
    }
    return text;
}

} // namespace

PlixctlOutput::PlixctlOutput(bool json, std::ostream& out, std::ostream& err)
    : mJson(json), mOut(out), mErr(err)
{
}

// Each result is flushed at once: a script or a pager reading a monitor's
// output sees every change as it happens.
void PlixctlOutput::line(const std::string& text)
{
    mOut << text << std::endl;
}

void PlixctlOutput::valueTable(const std::vector<PlixctlValueInfo>& values)
{
    if (mJson) {
        auto list = nlohmann::ordered_json::array();
        for (const auto& value : values) {
            list.push_back({{"id", value.id},
                            {"type", value.type},
                            {"file", value.file},
                            {"read_only", value.readOnly}});
        }
        line(list.dump());
        return;
    }
    std::size_t idWidth = 2;
    std::size_t typeWidth = 4;
    std::size_t fileWidth = 4;
    for (const auto& value : values) {
        idWidth = std::max(idWidth, value.id.size());
        typeWidth = std::max(typeWidth, value.type.size());
        fileWidth = std::max(fileWidth, value.file.size());
    }
    const auto row = [&](const std::string& id, const std::string& type, const std::string& file,
                         const std::string& access) {
        mOut << std::left << std::setw(static_cast<int>(idWidth)) << id << "  "
             << std::setw(static_cast<int>(typeWidth)) << type << "  "
             << std::setw(static_cast<int>(fileWidth)) << file << "  " << access << "\n";
    };
    row("ID", "TYPE", "FILE", "ACCESS");
    for (const auto& value : values) {
        row(value.id, value.type, value.file, value.readOnly ? "read-only" : "read-write");
    }
    mOut.flush();
}

void PlixctlOutput::values(GVariant* values)
{
    auto object = nlohmann::ordered_json::object();
    GVariantIter iter;
    g_variant_iter_init(&iter, values);
    const gchar* id = nullptr;
    GVariant* value = nullptr;
    while (g_variant_iter_next(&iter, "{&sv}", &id, &value)) {
        if (mJson) {
            object[id] = PlixctlValueText::toJson(value);
        } else {
            line(std::string(id) + "=" + PlixctlValueText::toText(value));
        }
        g_variant_unref(value);
    }
    if (mJson) {
        line(object.dump());
    }
}

void PlixctlOutput::setDone(const std::vector<std::string>& ids, const char* how)
{
    if (mJson) {
        line(nlohmann::ordered_json{{"status", 0}, {"ids", ids}, {"mode", how}}.dump());
        return;
    }
    line(std::string(how) + ": " + std::to_string(ids.size()) +
         (ids.size() == 1 ? " value" : " values"));
}

void PlixctlOutput::notStored(const std::vector<std::string>& ids, const std::string& file,
                              const std::string& error)
{
    if (mJson) {
        line(nlohmann::ordered_json{{"status", PlixctlStatus::notStoredCode},
                                    {"ids", ids},
                                    {"mode", "applied, but not stored"},
                                    {"file", file},
                                    {"error", error}}
                 .dump());
        return;
    }
    line("applied, but not stored: " + file + ": " + error);
}

void PlixctlOutput::storeStatus(const std::vector<PlixctlStoreFailure>& failing)
{
    if (mJson) {
        auto files = nlohmann::ordered_json::array();
        for (const auto& failure : failing) {
            files.push_back({{"file", failure.file}, {"error", failure.error}});
        }
        line(nlohmann::ordered_json{{"all_written", failing.empty()}, {"failing", files}}.dump());
        return;
    }
    if (failing.empty()) {
        line("all store files written");
    }
    for (const auto& failure : failing) {
        line("not stored: " + failure.file + ": " + failure.error);
    }
}

void PlixctlOutput::verifyMatched(const std::string& id)
{
    line(mJson ? nlohmann::ordered_json{{"id", id}, {"status", 0}, {"match", true}}.dump()
               : std::string("match"));
}

void PlixctlOutput::awaitingConfirmation(const std::vector<std::string>& ids,
                                         const std::string& token, unsigned seconds)
{
    const std::string deadline = deadlineIn(seconds);
    if (mJson) {
        line(nlohmann::ordered_json{{"status", 0},
                                    {"ids", ids},
                                    {"mode", "committed, awaiting confirmation"},
                                    {"token", token},
                                    {"deadline", deadline}}
                 .dump());
        return;
    }
    line("committed, awaiting confirmation: " + std::to_string(ids.size()) +
         (ids.size() == 1 ? " value" : " values"));
    line("token: " + token);
    line("deadline: " + deadline);
}

void PlixctlOutput::confirmationDone(const char* how)
{
    line(mJson ? nlohmann::ordered_json{{"status", 0}, {"mode", how}}.dump() : std::string(how));
}

void PlixctlOutput::pending(const PlixctlPending& state)
{
    if (mJson) {
        line(nlohmann::ordered_json{
            {"pending", state.pending}, {"seconds_left", state.secondsLeft}, {"ids", state.ids}}
                 .dump());
        return;
    }
    if (!state.pending) {
        line("nothing pending");
        return;
    }
    line("pending: " + std::to_string(state.secondsLeft) + " seconds left: " + joined(state.ids));
}

void PlixctlOutput::change(const std::string& id, GVariant* value, bool persistent)
{
    if (mJson) {
        const nlohmann::ordered_json shown = value != nullptr
                                                 ? PlixctlValueText::toJson(value)
                                                 : nlohmann::ordered_json(passwordShown);
        line(nlohmann::ordered_json{{"id", id}, {"value", shown}, {"persistent", persistent}}
                 .dump());
        return;
    }
    line(id + "=" + (value != nullptr ? PlixctlValueText::toText(value) : passwordShown));
}

void PlixctlOutput::unreadableChange(const std::string& id, int code, bool persistent)
{
    if (mJson) {
        line(nlohmann::ordered_json{{"id", id}, {"status", code}, {"persistent", persistent}}
                 .dump());
        return;
    }
    line(id + " changed (unreadable: code " + std::to_string(code) + ")");
}

int PlixctlOutput::failure(int code, const std::string& id)
{
    const std::string meaning = PlixctlStatus::meaningOf(code);
    if (mJson) {
        line(nlohmann::ordered_json{{"status", code}, {"message", meaning}, {"id", id}}.dump());
    }
    mErr << prefixed(id, meaning + " (code " + std::to_string(code) + ")") << std::endl;
    return PlixctlStatus::exitStatusOf(code);
}

void PlixctlOutput::document(const std::string& text)
{
    line(text);
}

int PlixctlOutput::fileFailure(const std::string& file, const std::string& error)
{
    mErr << prefixed("", file + ": " + error) << std::endl;
    return PlixctlStatus::usageError;
}

int PlixctlOutput::busFailure(const std::string& error)
{
    mErr << prefixed("", "cannot reach com.orvanta.plix: " + error) << std::endl;
    return PlixctlStatus::busError;
}

int PlixctlOutput::invalidValue(const std::string& id, const std::string& problem)
{
    mErr << prefixed(id, problem) << std::endl;
    return PlixctlStatus::invalidValue;
}

int PlixctlOutput::usageError(const std::string& problem)
{
    mErr << prefixed("", problem) << "\nTry 'plixctl --help'." << std::endl;
    return PlixctlStatus::usageError;
}
