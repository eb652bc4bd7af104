// How results are shown.
#pragma once

#include "host/engine/engine.h"

#include <string>
#include <string_view>

namespace host {

/// The lines of a result; with `raw` a text stands as it is, with nothing added.
void AppendPlain(std::string& output, const Outcome& outcome, bool raw);

/// True when the calculation answered the host a code, or gives the text of an error ("$code:message" with
/// a code other than 0).
bool IsFailure(const Outcome& outcome);

/// Writes each stream of a container to FOLDER/NUMBER-INDEX-TYPE. The text says what failed.
std::string SaveStreams(const std::string& folder, std::size_t number, const FM_Data& value);

/// Where a calculation does not parse: the message, its source line and a mark below the place.
/// `first_line` is the number of the calculation's first line in its source.
std::string ParseErrorReport(std::string_view calculation, const ParseError& error, std::size_t first_line);

} // namespace host
