// The plug-in's own drawing port of one pixel: media calls want a current port, though they draw nothing.
#pragma once

#include "platform/quicktime/ports.h"

namespace corvane {

/// Makes the port, in place of an earlier one, and makes it current. 0, or the media layer's code.
OSErr CreateDrawingPort();
void DisposeDrawingPort();

/// Null before start-up has made it and after shutdown. For qt::CurrentPort: most sound functions make it
/// current for the time of their call.
GWorldPtr DrawingPort();

} // namespace corvane
