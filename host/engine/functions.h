// The built-in functions, each under the name that calculations know it by.
#pragma once

#include "host/engine/builtin.h"

namespace host::functions {

FM_Data Case(const Arguments& arguments);
FM_Data Choose(const Arguments& arguments);
FM_Data GetAsBoolean(const Arguments& arguments);
FM_Data If(const Arguments& arguments);
FM_Data IsEmpty(const Arguments& arguments);

FM_Data Char(const Arguments& arguments);
FM_Data Code(const Arguments& arguments);
FM_Data GetAsText(const Arguments& arguments);
FM_Data GetValue(const Arguments& arguments);
FM_Data Left(const Arguments& arguments);
FM_Data Length(const Arguments& arguments);
FM_Data Lower(const Arguments& arguments);
FM_Data Middle(const Arguments& arguments);
FM_Data PatternCount(const Arguments& arguments);
FM_Data Position(const Arguments& arguments);
FM_Data Right(const Arguments& arguments);
FM_Data Substitute(const Arguments& arguments);
FM_Data Trim(const Arguments& arguments);
FM_Data Upper(const Arguments& arguments);
FM_Data ValueCount(const Arguments& arguments);

FM_Data Abs(const Arguments& arguments);
FM_Data Floor(const Arguments& arguments);
FM_Data GetAsNumber(const Arguments& arguments);
FM_Data Int(const Arguments& arguments);
FM_Data Max(const Arguments& arguments);
FM_Data Min(const Arguments& arguments);
FM_Data Mod(const Arguments& arguments);
FM_Data Round(const Arguments& arguments);

FM_Data GetApplicationVersion(const Arguments& arguments);
FM_Data GetCurrentTimestamp(const Arguments& arguments);
FM_Data GetFileName(const Arguments& arguments);
FM_Data GetFilePath(const Arguments& arguments);
FM_Data GetSystemPlatform(const Arguments& arguments);
FM_Data GetTemporaryPath(const Arguments& arguments);

FM_Data HostClickAfter(const Arguments& arguments);
FM_Data HostContainer(const Arguments& arguments);
FM_Data HostKeyAfter(const Arguments& arguments);
FM_Data HostPointer(const Arguments& arguments);
FM_Data HostPump(const Arguments& arguments);
FM_Data HostReference(const Arguments& arguments);
FM_Data HostStream(const Arguments& arguments);
FM_Data HostWindow(const Arguments& arguments);

} // namespace host::functions
