#include "PlixctlSecretInput.h"

#include <termios.h>
#include <unistd.h>

#include <iostream>

namespace {

// Turns echo off for its life when standard input is a terminal.
class PlixctlEchoOff
{
public:
    PlixctlEchoOff() : mActive(tcgetattr(STDIN_FILENO, &mSaved) == 0)
    {
        if (mActive) {
            termios quiet = mSaved;
            quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
        }
    }
    ~PlixctlEchoOff()
    {
        if (mActive) {
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &mSaved);
            std::cerr << std::endl;
        }
    }
    PlixctlEchoOff(const PlixctlEchoOff&) = delete;
    PlixctlEchoOff& operator=(const PlixctlEchoOff&) = delete;

private:
    termios mSaved{};
    bool mActive;
};

} // namespace

bool PlixctlSecretInput::readLine(const std::string& id, std::string& secret)
{
    if (isatty(STDIN_FILENO)) {
        std::cerr << "Password for " << id << ": " << std::flush;
    }
    const PlixctlEchoOff echoOff;
    if (!std::getline(std::cin, secret)) {
        return false;
    }
    if (!secret.empty() && secret.back() == '\r') {
        secret.pop_back();
    }
    return true;
}
