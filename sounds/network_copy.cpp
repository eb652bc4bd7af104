#include "sounds/network_copy.h"

#include "files/native_files.h"
#include "files/temporary_files.h"
#include "platform/text/utf.h"
#include "platform/win32/errors.h"
#include "platform/win32/folders.h"
#include "platform/win32/uuid.h"
#include "plugin/errors.h"
#include "plugin/workarounds.h"
#include "ui/standard_alert.h"

#include <array>
#include <string>

namespace corvane {
namespace {

constexpr std::size_t kFolderLimit = 1024; // units

void WarnOnce() {
    if (!WorkaroundWarnPending(Workaround::kRemoteFile)) return;
    NewStandardAlert(
        "Workaround being used!",
        "Corvane's Media_InsertQuickTime is about to use a workaround for a bug in QuickTime while "
        "accessing remote media. This workaround may cause the FileMaker script to fail. Please see "
        "the documentation for Meda_InsertQuickTime for complete information.",
        "OK")
        ->Run();
    SetWorkaround(Workaround::kRemoteFile, 1, false);
}

// "temp-", eight letters from "a" to "p", and the file's own name.
std::int32_t MakeName(const XFileSpec& file, std::u16string& name) {
    UUID uuid{};
    if (const LONG error = UuidCreate(&uuid); error != RPC_S_OK) return error;
    name = u"temp-";
    for (const std::uint8_t byte : uuid.Data4) name += static_cast<char16_t>(u'a' + (byte & 0xF));
    name += utf::ToUtf16(file.name);
    return 0;
}

} // namespace

std::int32_t CopyFromNetwork(XFileSpec& file) {
    WarnOnce();
    std::array<WCHAR, kFolderLimit> buffer;
    const DWORD length = GetTempPathW(kFolderLimit, buffer.data());
    if (length == 0 || length >= kFolderLimit) return static_cast<std::int32_t>(GetLastError());
    const std::u16string folder(buffer.data(), length);
    std::int32_t code = native::kCopyTargetExists;
    std::u16string name;
    while (code == native::kCopyTargetExists) {
        code = MakeName(file, name);
        if (code == 0) code = native::CopyItem(file.GetNativePathW(), folder, false, name);
    }
    if (code != 0) return code;
    XFileSpec copy;
    code = copy.SetFromNativePathW(folder + name);
    if (code == 0) file = copy;
    return code;
}

} // namespace corvane
