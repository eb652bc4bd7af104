#include "platform/quicktime/effects/settings_xml.h"

#include <cstdlib>

// Any text is a description or not; one that is says the same when it is written out and read again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto settings = qt::EffectSettingsFromXml({reinterpret_cast<const char*>(bytes), size});
    if (!settings) return 0;
    const std::string xml = qt::EffectSettingsToXml(*settings);
    const auto again = qt::EffectSettingsFromXml(xml);
    if (!again || qt::EffectSettingsToXml(*again) != xml) std::abort();
    return 0;
}
