// The program corvane on a disk that becomes full at the write whose number CORVANE_FULL_DISK has, and stays
// so. The workers that it starts have all the room.
#include "host/commands/commands.h"
#include "tests/faults/faults.h"

#include <cstdlib>
#include <limits>
#include <string>

int main(int argc, char** argv) {
    int status = 0;
    const auto line = host::ReadCommandLine(argc, argv, status);
    if (!line) return status;
    const char* number = std::getenv("CORVANE_FULL_DISK");
    if (number == nullptr || line->command == "worker") return host::RunCommand(*line);
    const corvane::test::Shortage shortage(corvane::test::Resource::kDisk, std::stoll(number),
                                           std::numeric_limits<std::int64_t>::max());
    return host::RunCommand(*line);
}
