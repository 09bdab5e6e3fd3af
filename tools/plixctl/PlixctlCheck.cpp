#include "PlixctlCheck.h"

#include "Plix.h"
#include "PlixExit.h"
#include "PlixLog.h"
#include "PlixctlActionChecks.h"
#include "PlixctlCheckExit.h"
#include "PlixctlCheckReport.h"
#include "PlixctlValueChecks.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace {

[[noreturn]] void throwExit(int status)
{
    throw PlixctlCheckExit{status};
}

// While it lives, the service's messages go to the report instead of the
// system log and standard output, and an end of the process is thrown.
class Gathering
{
public:
    explicit Gathering(PlixctlCheckReport& report)
    {
        plixSetLogSink(
            [&report](int priority, const std::string& text) { report.logged(priority, text); });
        plixSetExitHandler(throwExit);
    }
    ~Gathering()
    {
        plixSetExitHandler(nullptr);
        plixSetLogSink(nullptr);
    }
    Gathering(const Gathering&) = delete;
    Gathering& operator=(const Gathering&) = delete;
};

std::string severityOf(const PlixctlProblem& problem)
{
    return problem.exitStatus == 0 ? "warning"
                                   : "error (status " + std::to_string(problem.exitStatus) + ")";
}

nlohmann::ordered_json jsonOf(const PlixctlProblem& problem)
{
    nlohmann::ordered_json entry;
    entry["file"] = problem.file;
    if (problem.line != 0) {
        entry["line"] = problem.line;
    }
    if (!problem.jpath.empty()) {
        entry["jpath"] = problem.jpath;
    }
    if (!problem.subject.empty()) {
        entry["subject"] = problem.subject;
    }
    entry["severity"] = problem.exitStatus == 0 ? "warning" : "error";
    if (problem.exitStatus != 0) {
        entry["exitStatus"] = problem.exitStatus;
    }
    entry["message"] = problem.message;
    return entry;
}

std::string summaryOf(const std::string& xmlPath, int status, std::size_t count)
{
    if (status == PlixctlCheck::wouldNotStart) {
        return xmlPath + ": the service would not start on this configuration\n";
    }
    if (status == PlixctlCheck::startsWithWarnings) {
        return xmlPath + ": the service would start, with " + std::to_string(count) +
               (count == 1 ? " problem\n" : " problems\n");
    }
    return xmlPath + ": OK\n";
}

} // namespace

std::vector<PlixctlProblem> PlixctlCheck::problemsOf(const std::string& xmlPath)
{
    PlixctlCheckReport report(xmlPath);
    {
        const Gathering gathering(report);
        Plix engine;
        engine.load(xmlPath, report);
        PlixctlValueChecks(report).run(engine.declaredDataSets());
        PlixctlActionChecks(report).run(engine.declaredDataSets());
        report.finish();
    }
    return report.problems();
}

int PlixctlCheck::statusOf(const std::vector<PlixctlProblem>& problems)
{
    if (std::any_of(problems.begin(), problems.end(),
                    [](const PlixctlProblem& problem) { return problem.exitStatus != 0; })) {
        return wouldNotStart;
    }
    return problems.empty() ? starts : startsWithWarnings;
}

std::string PlixctlCheck::lineOf(const PlixctlProblem& problem)
{
    std::string line = problem.file;
    if (problem.line != 0) {
        line += ":" + std::to_string(problem.line);
    }
    line += ":";
    if (!problem.jpath.empty()) {
        line += " jpath " + problem.jpath + ":";
    }
    line += " " + severityOf(problem) + ":";
    if (!problem.subject.empty()) {
        line += " " + problem.subject + ":";
    }
    return line + " " + problem.message;
}

int PlixctlCheck::run(const std::string& xmlPath, bool json, std::ostream& out)
{
    const std::vector<PlixctlProblem> problems = problemsOf(xmlPath);
    const int status = statusOf(problems);
    if (json) {
        nlohmann::ordered_json document;
        document["file"] = xmlPath;
        document["status"] = status;
        document["problems"] = nlohmann::ordered_json::array();
        for (const PlixctlProblem& problem : problems) {
            document["problems"].push_back(jsonOf(problem));
        }
        out << document.dump(2) << "\n";
        return status;
    }
    for (const PlixctlProblem& problem : problems) {
        out << lineOf(problem) << "\n";
    }
    out << summaryOf(xmlPath, status, problems.size());
    return status;
}
