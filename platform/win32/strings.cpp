#include "platform/win32/strings.h"

#include "platform/win32/errors.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace {

std::map<HINSTANCE, std::span<const win32::StringResource>>& Tables() {
    static std::map<HINSTANCE, std::span<const win32::StringResource>> tables;
    return tables;
}

} // namespace

namespace win32 {

void SetStringResources(HINSTANCE instance, std::span<const StringResource> strings) {
    Tables()[instance] = strings;
}

} // namespace win32

int LoadStringW(HINSTANCE instance, UINT id, WCHAR* buffer, int capacity) {
    if (capacity <= 0) return 0;
    buffer[0] = u'\0';
    const auto strings = Tables()[instance];
    const auto string =
        std::find_if(strings.begin(), strings.end(), [id](const auto& s) { return s.id == id; });
    if (string == strings.end()) {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return 0;
    }
    const auto text = std::u16string_view(string->text).substr(0, static_cast<std::size_t>(capacity) - 1);
    text.copy(buffer, text.size());
    buffer[text.size()] = u'\0';
    return static_cast<int>(text.size());
}
