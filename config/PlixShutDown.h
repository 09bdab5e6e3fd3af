#pragma once

// Ends the loading of a broken configuration: logs "Shutting down plix!" at
// info level and ends the process with the status through plixExit.
[[noreturn]] void plixShutDown(int status);
