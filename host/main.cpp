#include "host/commands/commands.h"

int main(int argc, char** argv) {
    int status = 0;
    const auto line = host::ReadCommandLine(argc, argv, status);
    return line ? host::RunCommand(*line) : status;
}
