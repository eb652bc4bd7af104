// The display that the windows stand on: opened once per process, and gone for good when the connection
// breaks.
#pragma once

#include "platform/win32/windows_module.h"

#include <string>

namespace corvane::gtk {

/// Opens the display on first use; later calls only take the client over. Answers why there is none.
std::string OpenDisplay(const win32::WindowsClient& client);

/// Looks at the connection each time. Once it is broken the window library must not be asked for anything: it
/// takes an answer that does not come for one, reads what was never written, or waits for ever.
bool IsDisplayLost();

/// Calls the client, once, when the display was lost since. For use when no window is open any more: the
/// client may print, or show something else.
void TellDisplayLost();

/// Lets the messages that wait in the plug-in's queue be handled.
void DispatchMessages();

} // namespace corvane::gtk
