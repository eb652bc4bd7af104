#pragma once

#include "platform/fmwrapper/fmwrapper.h"

namespace corvane {

/// Makes the text metadata of an image the result: its text items and, for JPEG, its EXIF entries; the empty
/// text when it has none, or an error text. Answers the host's code.
FM_Error ImageMetadata(const FM_Data& parameter, FM_Data& result);

} // namespace corvane
