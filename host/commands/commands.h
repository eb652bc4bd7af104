// The commands of the program. Each answers the exit status.
#pragma once

#include "host/commands/command_line.h"

namespace host {

/// Starts the session and carries the command out.
int RunCommand(const CommandLine& line);

int Eval(Session& session, const CommandLine& line);
int ListFunctions(Session& session, const CommandLine& line);
int About(Session& session, const CommandLine& line);
int Help(Session& session, const CommandLine& line);

int Db(Session& session, const CommandLine& line);
int Import(Session& session, const CommandLine& line);
int Show(Session& session, const CommandLine& line);
int Export(Session& session, const CommandLine& line);
int Update(Session& session, const CommandLine& line);
int Sheet(Session& session, const CommandLine& line);
int Worker(Session& session, const CommandLine& line);

} // namespace host
