#include "host/manual/manual.h"

#include "platform/text/utf.h"

#include <algorithm>
#include <array>

namespace host {
namespace {

constexpr auto kPluginGroups =
    std::to_array<const ManualGroup*>({&kGeneralManual, &kFileManual, &kImageManual, &kSoundManual});

const ManualPage* FindIn(const ManualGroup& group, const std::string& lower_name) {
    const auto found = std::ranges::find_if(
        group.pages, [&](const ManualPage& page) { return utf::ToLower(page.name) == lower_name; });
    return found == group.pages.end() ? nullptr : &*found;
}

} // namespace

std::span<const ManualGroup* const> PluginManual() {
    return kPluginGroups;
}

const ManualPage* FindPage(std::string_view name) {
    const std::string lower = utf::ToLower(name);
    for (const ManualGroup* group : kPluginGroups)
        if (const ManualPage* page = FindIn(*group, lower)) return page;
    return FindIn(kHostManual, lower);
}

} // namespace host
