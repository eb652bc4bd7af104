// Blocks as scripts hand them in, and payloads straight, which random digits would hardly ever spell.
#include "fuzz/fuzz_target.h"
#include "plugin/hex_blocks.h"

void Fuzz(std::string_view input) {
    corvane::HexBlockToSettings(input);
    const corvane::SettingsBytes settings = corvane::ExpandSettings(input);
    if (settings.code != 0) return;
    const corvane::SettingsBytes block = corvane::SettingsToHexBlock(settings.bytes);
    const corvane::SettingsBytes again = corvane::HexBlockToSettings(block.bytes);
    Require(again.code == 0 && again.bytes == settings.bytes);
}
