#include "plugin/workarounds.h"

#include <array>
#include <cstddef>

namespace corvane {
namespace {

constexpr std::uint16_t kWarnBit = 0x8000;

std::array<std::uint16_t, 2> g_words = {};

std::uint16_t& Word(Workaround which) {
    return g_words[static_cast<std::size_t>(which)];
}

} // namespace

void SetWorkaround(Workaround which, std::uint16_t value, bool warn) {
    Word(which) = static_cast<std::uint16_t>((value & ~kWarnBit) | (warn ? kWarnBit : 0));
}

bool WorkaroundValue(Workaround which) {
    return (Word(which) & ~kWarnBit) != 0;
}

bool WorkaroundWarnPending(Workaround which) {
    return (Word(which) & kWarnBit) != 0;
}

void ResetWorkarounds() {
    SetWorkaround(Workaround::kLinkMedia, 1, true);
    SetWorkaround(Workaround::kRemoteFile, 1, true);
}

} // namespace corvane
