#include "plugin/host_version.h"

#include "platform/win32/folders.h"
#include "platform/win32/version.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

namespace corvane {
namespace {

constexpr std::size_t kFileNameLimit = 4096;

// Without language, and US English in Windows Latin: the two that hosts have been built with.
constexpr std::array<const char*, 2> kVersionNames = {R"(\StringFileInfo\000004B0\FileVersion)",
                                                      R"(\StringFileInfo\000904E4\FileVersion)"};

struct KnownVersion {
    std::int16_t interface_version;
    std::string_view prefix;
    std::int16_t code;
};

constexpr std::array<KnownVersion, 8> kKnownVersions = {{
    {50, "7.0", 700},
    {51, "8.0", 800},
    {51, "8.1", 810},
    {51, "8.5", 850},
    {51, "9.0", 900},
    {51, "9.1", 910},
    {51, "10.0", 1000},
    {51, "10.1", 1010},
}};

std::vector<char> ReadVersionResource() {
    std::array<char, kFileNameLimit> file;
    if (GetModuleFileNameA(nullptr, file.data(), static_cast<DWORD>(file.size())) == 0) return {};
    DWORD handle = 0;
    std::vector<char> resource(GetFileVersionInfoSizeA(file.data(), &handle));
    if (resource.empty() || GetFileVersionInfoA(file.data(), handle, static_cast<DWORD>(resource.size()),
                                                resource.data()) == FALSE)
        return {};
    return resource;
}

} // namespace

std::string ReadHostVersionText() {
    const std::vector<char> resource = ReadVersionResource();
    if (resource.empty()) return {};
    for (const char* name : kVersionNames) {
        void* value = nullptr;
        UINT length = 0;
        if (VerQueryValueA(resource.data(), name, &value, &length) == FALSE) continue;
        const std::string_view text(static_cast<const char*>(value));
        return std::string(text.substr(0, text.starts_with('1') ? 6 : 5));
    }
    return {};
}

std::int16_t ClassifyHostVersion(std::int16_t interface_version, std::string_view text) {
    for (const KnownVersion& known : kKnownVersions) {
        if (known.interface_version != interface_version || !text.starts_with(known.prefix)) continue;
        // The release number stands behind one more character, the "v"; without digits it is 0.
        const std::string_view release = text.substr(std::min(known.prefix.size() + 1, text.size()));
        std::int16_t number = 0;
        std::from_chars(release.data(), release.data() + release.size(), number);
        return static_cast<std::int16_t>(known.code + number);
    }
    return 0;
}

bool AcceptsHostVersion(std::int16_t version_code) {
    const auto within = [=](int first, int last) { return version_code >= first && version_code <= last; };
    return within(701, 799) || within(801, 859) || within(900, 999) || within(1000, 1009);
}

HostVersion& CurrentHostVersion() {
    static HostVersion version;
    return version;
}

} // namespace corvane
