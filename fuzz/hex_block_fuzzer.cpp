// Blocks as scripts hand them in, and payloads straight, which random digits would hardly ever spell.
#include "plugin/hex_blocks.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    corvane::HexBlockToSettings(input);

    const corvane::SettingsBytes settings = corvane::ExpandSettings(input);
    if (settings.code != 0) return 0;
    const corvane::SettingsBytes block = corvane::SettingsToHexBlock(settings.bytes);
    const corvane::SettingsBytes again = corvane::HexBlockToSettings(block.bytes);
    if (again.code != 0 || again.bytes != settings.bytes) std::abort();
    return 0;
}
