// Text results of the image and file functions: the process-wide result buffer, error texts, and the checks
// that those functions begin with.
//
// A handler checks and reads its parameters, does its work, and ends every path with FinishResult, or with
// SetContainerResult where it returns a container. It answers the host 0 unless its own description says
// otherwise; a script sees a failure only in the result text "$code:message".
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>
#include <string_view>

namespace corvane {

inline constexpr std::int32_t kErrorParameterCount = 20100;
inline constexpr std::int32_t kErrorImageType = 20101;
inline constexpr std::int32_t kErrorParameterNotText = 20102;
inline constexpr std::int32_t kErrorUnrecognized = 20103; ///< special-folder code, or an empty container
inline constexpr std::int32_t kErrorTargetExists = 20200;
inline constexpr std::int32_t kErrorNoSuchMedia = 20400;
inline constexpr std::int32_t kErrorContainerIsCVImage = 20401;
inline constexpr std::int32_t kErrorMediaMalfunction = 20402;
inline constexpr std::int32_t kErrorNoMediaComponents = 20403;

/// Replaces, or adds to, the result buffer. Text that the host has no memory for is silently not added.
void SetResultBufferText(std::string_view utf8);
void AppendResultBufferText(std::string_view utf8);

/// Drops the buffer, if there is one, without delivering its text.
void DiscardResultBuffer();

/// Size of the buffered text in bytes; 0 when there is no buffer.
std::int32_t ResultBufferSize();

/// Makes "$code:message" the result: at most 199 bytes, cut at a character boundary.
void ReportError(std::int32_t code, std::string_view message);

/// Delivers the buffer (the empty text when there is none) and disposes of it.
void FinishResult(FM_Data& result);

/// Makes the container the result; the buffer's text is dropped.
void SetContainerResult(FM_Data& result, const FM_BinaryData* container);

/// True when the handler must stop: the count differs from `expected` (-1: any) and that is reported.
bool CheckParameterCount(const FM_DataVect& parameters, std::int32_t expected);

/// True when the handler must stop: the parameter is no text, and `message` is reported.
bool RequireTextParameter(const FM_DataVect& parameters, std::int32_t index, std::string_view message);

} // namespace corvane
