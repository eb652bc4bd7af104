// The walk over the chosen records of a table that commands with a file or a card for each of them share.
#pragma once

#include "host/commands/open_table.h"

#include <functional>
#include <optional>

namespace host {

/// Does `act` with each record for which --where is true, with the record's fields as names in calculations.
/// Failures are told as they come. Answers the exit status: 0, 1 when a record failed, and those of
/// interruptions, of calculations that don't parse and of a file that can't be read.
int EachChosenRecord(Engine& engine, OpenTable& table, const CommandLine& line,
                     const std::function<std::optional<RecordFailure>(std::int64_t record)>& act);

} // namespace host
