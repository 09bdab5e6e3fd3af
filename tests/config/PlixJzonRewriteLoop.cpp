// Rewrites one JSON store file for ever, alternating its "state" member
// between "first" and "second", so that a test can kill it at any point of a
// write and look at what is left on disk. Writes one byte to its standard
// output once the file is read, just before the first write.
#include "jzonFile.h"

#include <unistd.h>

#include <string>

int main(int argc, char** argv)
{
    if (argc != 2) {
        return 2;
    }
    jzonFile file(argv[1]);
    Jzon::Node* state = file.read() ? file.findNode("state") : nullptr;
    if (state == nullptr) {
        return 2;
    }
    if (write(STDOUT_FILENO, "r", 1) != 1) {
        return 2;
    }
    std::string error;
    for (unsigned round = 0;; ++round) {
        state->AsValue().Set(std::string(round % 2 == 0 ? "second" : "first"));
        if (!file.write(error)) {
            return 3;
        }
    }
}
