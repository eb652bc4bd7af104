// The folder that relative paths of parameters count from.
#pragma once

#include "files/file_spec.h"

namespace corvane {

/// Process-wide, for the host's thread only. Changed by Media_SetDefaultFolder.
XFileSpec& DefaultFolder();

/// Back to the root of the system volume, as when the file functions are registered.
void ResetDefaultFolder();

} // namespace corvane
