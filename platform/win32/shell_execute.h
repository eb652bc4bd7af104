// Opening items as a double-click does.
#pragma once

#include "platform/win32/types.h"

inline constexpr std::intptr_t SE_ERR_NOASSOC = 31;

/// Opens the item at a native path: a shortcut file opens what it leads to; anything else is handed to the
/// program that the environment variable CORVANE_OPENER names, else to xdg-open, with its Unix path as the
/// only argument. The program runs on by itself, in its own session, without input and output; it has two
/// seconds to fail, and has opened the item otherwise. A value above 32 is success; else 2 or 3 for a missing
/// item, another of the platform's numbers, or SE_ERR_NOASSOC when no program could open it.
HINSTANCE ShellExecuteW(const WCHAR* file);
