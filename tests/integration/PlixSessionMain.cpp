// plix-session: one client of dbus-ex-plix that keeps a single bus
// connection for a whole session. A transaction belongs to the connection
// that started it, so the calls of one transaction must share a connection,
// which one-shot tools such as gdbus call cannot do.
//
//   plix-session ADDRESS < COMMANDS
//
// Each line of COMMANDS is a method of com.orvanta.plix.dBusAdaptor followed
// by its arguments in GVariant text, as gdbus call prints them, e.g.
//   SetIntValue ('ports/mainport', 2000)
//   Verify (<'secret1'>, 'remoteaccess/accesscontrolPassword1')
//   Transactionstop
// Each call is printed with its reply. Empty lines and lines starting with
// "#" are skipped.

#include "PlixBusClient.h"

#include <iostream>
#include <string>

namespace {
GVariant* parseArguments(const std::string& text, std::string& error)
{
    if (text.find_first_not_of(" \t") == std::string::npos) {
        return nullptr;
    }
    GError* failure = nullptr;
    GVariant* arguments = g_variant_parse(nullptr, text.c_str(), nullptr, nullptr, &failure);
    if (arguments == nullptr) {
        error = failure->message;
        g_error_free(failure);
    }
    return arguments;
}

void runLine(const PlixBusClient& client, const std::string& line)
{
    const auto split = line.find(' ');
    const std::string method = line.substr(0, split);
    const std::string text = split == std::string::npos ? "" : line.substr(split + 1);
    std::string error;
    GVariant* arguments = parseArguments(text, error);
    if (!error.empty()) {
        std::cout << line << "\n    cannot read the arguments: " << error << std::endl;
        return;
    }
    PlixGVariantPtr reply = client.callAdaptor(method, arguments, &error);
    std::cout << line << "\n    -> ";
    if (!reply) {
        std::cout << "error " << error << std::endl;
        return;
    }
    gchar* printed = g_variant_print(reply.get(), FALSE);
    std::cout << printed << std::endl;
    g_free(printed);
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: " << argv[0] << " BUS-ADDRESS < COMMANDS" << std::endl;
        return 2;
    }
    PlixBusClient client(argv[1]);
    std::string line;
    while (std::getline(std::cin, line)) {
        if (!line.empty() && line[0] != '#') {
            runLine(client, line);
        }
    }
    return 0;
}
