// An effect and its parameters as XML that people can read and edit:
//
//   <?xml version="1.0"?>
//   <!-- Blur: one image -->
//   <effect type="blur">
//     <!-- Radius: 0 to 100 pixels, default 4 -->
//     <radius>4</radius>
//   </effect>
#pragma once

#include "platform/quicktime/effects/parameter_set.h"

#include <string>
#include <string_view>

namespace qt {

/// Lines end in a line feed. ASCII alone.
std::string EffectSettingsToXml(const EffectSettings& settings);

/// Nothing for a text that is no well-formed UTF-8 XML, has a document type (which could declare entities) or
/// deeply nested elements, or does not name a known effect. Unknown elements and attributes are passed over,
/// a value out of range is brought into it, one that makes no sense is the default; of several of the same
/// parameter the last counts.
std::optional<EffectSettings> EffectSettingsFromXml(std::string_view xml);

} // namespace qt
