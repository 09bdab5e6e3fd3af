// A private link for the tests of the Linux system-configuration library:
// two network namespaces made by the test, joined by a veth pair whose end
// in the device namespace carries the device's interface name. Nothing of
// the machine's own network is touched; the namespaces go away with the
// object.
#pragma once

#include <functional>
#include <string>

class PlixTestNetwork
{
public:
    PlixTestNetwork();
    ~PlixTestNetwork();
    PlixTestNetwork(const PlixTestNetwork&) = delete;
    PlixTestNetwork& operator=(const PlixTestNetwork&) = delete;

    // Empty when namespaces can be made here, else why not.
    static std::string unavailableReason();

    // Makes the namespaces; with a link, also the veth pair, both ends up.
    bool create(bool withLink = true);

    // Runs an ip command inside the device or the peer namespace (the
    // arguments follow "ip -n <namespace>"); its standard output.
    std::string device(const std::string& arguments) const;
    std::string peer(const std::string& arguments) const;

    // Runs the body in a child that has joined the device namespace; the
    // body's text, or "no child" when it did not finish in time.
    std::string inDevice(const std::function<int()>& body) const;

    // Runs a shell command; its standard output and, if asked, exit status.
    static std::string shell(const std::string& command, int* status = nullptr);

private:
    std::string ip(const std::string& ns, const std::string& arguments) const;

    std::string deviceNs;
    std::string peerNs;
    bool created = false;
};
