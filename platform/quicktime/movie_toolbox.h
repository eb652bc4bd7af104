// Start, stop and version of the media layer.
#pragma once

#include "platform/quicktime/types.h"

/// Starts the media layer; then the movie toolbox. 0 on success. Each start has its stop, in reverse order.
OSErr InitializeQTML(std::int32_t flags);
OSErr EnterMovies();
void ExitMovies();
void TerminateQTML();

/// Value of a system selector. 'qtim': the media layer's version, 0x0769'8000 for 7.6.9. A selector that is
/// not known, or asked for while the layer is stopped, answers -5551.
OSErr Gestalt(OSType selector, std::int32_t* response);
