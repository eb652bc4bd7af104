#include "platform/win32/drives.h"

#include "platform/fmwrapper/session.h"
#include "platform/text/utf.h"
#include "platform/win32/paths.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

DWORD GetLogicalDriveStringsW(DWORD size, WCHAR* buffer) {
    std::vector<std::string> roots;
    for (const fm::Drive& drive : fm::CurrentSession().drives)
        if (drive.root.back() == ':') roots.push_back(drive.root);
    std::ranges::sort(roots);
    std::u16string text;
    for (const std::string& root : roots) {
        text += utf::ToUtf16(root);
        text += std::u16string_view(u"\\\0", 2);
    }
    const auto length = static_cast<DWORD>(text.size());
    if (length == 0) return 0;
    if (length + 1 > size) return length + 1;
    std::ranges::copy(text, buffer);
    buffer[length] = u'\0';
    return length;
}

UINT GetDriveTypeW(const WCHAR* root) {
    if (!win32::ToUnixPath(root).exists) return DRIVE_NO_ROOT_DIR;
    std::string name = utf::ToUpper(utf::ToUtf8(root));
    while (!name.empty() && name.back() == '\\') name.pop_back();
    for (const fm::Drive& drive : fm::CurrentSession().drives)
        if (utf::ToUpper(drive.root) == name) return drive.remote ? DRIVE_REMOTE : DRIVE_FIXED;
    return DRIVE_NO_ROOT_DIR;
}
