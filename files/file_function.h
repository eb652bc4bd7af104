// What the file functions have in common.
#pragma once

#include "files/file_spec.h"
#include "files/native_files.h"
#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>
#include <string_view>

namespace corvane {

/// Checks the parameter count (-1: any), runs the body, which puts a text or an error text into the result
/// buffer or nothing, and delivers the buffer. Always 0.
FM_Error RunFileFunction(const FM_DataVect& parameters, std::int32_t count, FM_Data& result,
                         void (*body)(const FM_DataVect& parameters));

/// As that of one parameter, but the name of a file that the person chose is not left as the result.
std::int32_t ResolvePathParameter(const FM_DataVect& parameters, std::int32_t index, XFileSpec& spec);

/// The existing item that a path parameter names, or the code of the step that failed.
native::OperationPath ResolveItemParameter(const FM_DataVect& parameters, std::int32_t index);

/// The text after the last "."; empty when there is none.
std::string_view ExtensionOf(std::string_view text);

} // namespace corvane
