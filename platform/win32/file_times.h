// Times of files, and the calendar dates that they stand for.
#pragma once

#include "platform/win32/types.h"

#include <ctime>

/// Units of 100 ns since 1 January 1601, universal time.
struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;     ///< from 1
    WORD wDayOfWeek; ///< from 0, Sunday
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};

namespace win32 {

/// Times out of the range (before 1601, after 30827) become its nearest end.
FILETIME ToFileTime(const timespec& time);

/// Date and time in the machine's time zone, by the rules that hold at that date.
SYSTEMTIME ToLocalTime(const FILETIME& time);

} // namespace win32
