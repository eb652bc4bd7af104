#include "fuzz/fuzz_target.h"
#include "platform/quicktime/effects/settings_xml.h"

// Any text is a description or not; one that is says the same when it is written out and read again.
void Fuzz(std::string_view input) {
    const auto settings = qt::EffectSettingsFromXml(input);
    if (!settings) return;
    const std::string xml = qt::EffectSettingsToXml(*settings);
    const auto again = qt::EffectSettingsFromXml(xml);
    Require(again && qt::EffectSettingsToXml(*again) == xml);
}
