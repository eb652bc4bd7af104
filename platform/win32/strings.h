// String resources of a library.
#pragma once

#include "platform/win32/types.h"

#include <span>

namespace win32 {

struct StringResource {
    UINT id;
    const char16_t* text;
};

/// Registers a library's string table, in place of the one it had; the caller keeps the strings alive.
void SetStringResources(HINSTANCE instance, std::span<const StringResource> strings);

} // namespace win32

/// Copies at most capacity - 1 units of the string and a terminator; answers the units copied. 0 for a
/// string that is not there (last error 1814); the buffer then holds the empty text.
int LoadStringW(HINSTANCE instance, UINT id, WCHAR* buffer, int capacity);
