// Failures on demand: lets a test show that a caller of the data interface survives any refusal.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>
#include <string_view>

namespace fm {

/// The operation that comes `after` operations from now (0: the next one) fails with `status`, once. With a
/// name given only operations of that name count. Deletions count too; they still release their object.
void FailOperation(std::int64_t after, FM_Status status, std::string_view name = {});
void FailNothing();

/// Operations asked for since the process started, to find how many a call makes.
std::int64_t OperationCount();

/// Host objects that are alive now, memory blocks included.
std::int64_t LiveObjects();

/// Called first by every operation: counts it, and sets the status that the operation is to have. True when
/// the operation has to fail.
bool Fails(const char* operation, FM_Status* status);

} // namespace fm
