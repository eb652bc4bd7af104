// Values as fields hold them, and as columns of the file do.
#pragma once

#include "host/fields/catalogue.h"
#include "platform/fmwrapper/objects.h"

#include <string>

namespace host {

/// What a field of that type makes of a value: a number field takes the number that a text holds, a
/// container field takes a text as the reference of a container without streams. Nothing stays nothing.
FM_Data ValueFor(FieldType type, const FM_Data& value);

/// Binds the column of a value that ValueFor gave; of a container, its reference text. `text` holds what the
/// statement borrows.
void BindColumn(Statement& statement, int parameter, const FM_Data& value, std::string& text);

/// The value of a column; of a container field without its streams.
FM_Data ColumnValue(const Statement& statement, int column, FieldType type);

} // namespace host
