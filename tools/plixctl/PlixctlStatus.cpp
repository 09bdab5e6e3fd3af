#include "PlixctlStatus.h"

#include <map>

namespace {

struct PlixctlCode
{
    int exitStatus;
    const char* meaning;
};

const std::map<int, PlixctlCode>& codes()
{
    static const std::map<int, PlixctlCode> table{
        {0, {PlixctlStatus::success, "success"}},
        {1, {PlixctlStatus::success, "success, an earlier set of the same XML-ID was replaced"}},
        {4, {PlixctlStatus::busy, "the caller does not hold the transaction, or none is open"}},
        {8, {PlixctlStatus::busy, "busy: another transaction is open"}},
        {9, {PlixctlStatus::unknownId, "the XML-ID is not declared"}},
        {10, {PlixctlStatus::actionFailed, "a change action could not open its file"}},
        {11, {PlixctlStatus::invalidValue, "the requested type differs from the value's type"}},
        {13,
         {PlixctlStatus::actionFailed,
          "a change action's command or system-configuration call failed"}},
        {15, {PlixctlStatus::readOnly, "the value lives in a read-only file"}},
        {17, {PlixctlStatus::notStored, "applied, but a store file could not be written"}},
        {200, {PlixctlStatus::invalidValue, "type mismatch on set, or value not allowed"}},
        {201, {PlixctlStatus::verifyMismatch, "verify: the candidate differs"}},
        {203, {PlixctlStatus::invalidValue, "the main port equals the HTTP port"}},
        {204,
         {PlixctlStatus::invalidValue,
          "a length rule on a value that is neither string nor password"}},
        {205, {PlixctlStatus::invalidValue, "length out of bounds"}},
        {206, {PlixctlStatus::invalidValue, "a required password is empty"}},
        {207, {PlixctlStatus::invalidValue, "not exactly one connection-priority option set"}},
        {401, {PlixctlStatus::actionFailed, "the IP address is already in use on the network"}},
        {402, {PlixctlStatus::actionFailed, "the IP address is not supported"}},
    };
    return table;
}

} // namespace

int PlixctlStatus::exitStatusOf(int code)
{
    const auto found = codes().find(code);
    return found != codes().end() ? found->second.exitStatus : otherCode;
}

std::string PlixctlStatus::meaningOf(int code)
{
    const auto found = codes().find(code);
    return found != codes().end() ? found->second.meaning : "failure reported by the service";
}

std::string PlixctlStatus::table()
{
    return "Exit status:\n"
           "  0   success\n"
           "  1   verify: the candidate differs (code 201)\n"
           "  2   the service or the bus cannot be reached, or the bus refused the call\n"
           "  3   busy: another transaction is open, or the transaction was lost (codes 4, 8)\n"
           "  4   the XML-ID is not declared (code 9)\n"
           "  5   invalid value (codes 11, 200, 203, 204, 205, 206, 207), or a VALUE\n"
           "      that does not read as the value's type\n"
           "  6   the value lives in a read-only file (code 15)\n"
           "  7   a change action failed (codes 10, 13, 401, 402)\n"
           "  8   any other code of the service\n"
           "  9   set: applied, but a store file could not be written (code 17);\n"
           "      status: a store file is not written\n"
           "  64  usage error\n";
}
