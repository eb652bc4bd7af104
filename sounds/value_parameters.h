// Times and colours as parameters. Codes as in plugin/parameters.h; a text of another form is -50.
#pragma once

#include "plugin/parameters.h"
#include "sounds/fade_times.h"
#include "sounds/html_color.h"

namespace corvane {

enum class TimeSign : std::uint8_t { kRefused, kFromEnd };

/// A time text (see plugin/time_text.h), of which 1,024 characters count. Where a sign is allowed, a "-" in
/// front counts the time back from the end.
Read<FadeTime> ReadTimeParameter(const FM_DataVect& parameters, std::int32_t index, TimeSign sign);

Read<RgbColor> ReadHtmlColorParameter(const FM_DataVect& parameters, std::int32_t index);

} // namespace corvane
