#include "host/commands/commands.h"

#include <fcntl.h>
#include <unistd.h>

namespace {

// Else the first file that is opened would take the number of a standard stream that is closed, and get its
// text. What stands in can't be used either way, so that reading and writing still fail.
void OccupyStandardStreams() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(descriptor, F_GETFD) < 0)
            (void)::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

} // namespace

int main(int argc, char** argv) {
    OccupyStandardStreams();
    int status = 0;
    const auto line = host::ReadCommandLine(argc, argv, status);
    return line ? host::RunCommand(*line) : status;
}
