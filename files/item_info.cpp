#include "files/file_function.h"
#include "files/functions.h"
#include "platform/text/utf.h"
#include "platform/win32/file_times.h"
#include "plugin/results.h"

#include <array>
#include <cstdio>

namespace corvane {
namespace {

// Local time, the day first: "07-03-2006 14:05:09".
std::string TimeText(const FILETIME& time) {
    const SYSTEMTIME local = win32::ToLocalTime(time);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%2.2d-%2.2d-%4.4d %2.2d:%2.2d:%2.2d", local.wDay, local.wMonth,
                  local.wYear, local.wHour, local.wMinute, local.wSecond);
    return text.data();
}

std::string Flag(bool set) {
    return set ? "1" : "0";
}

void Describe(const FM_DataVect& parameters) {
    const native::OperationPath item = ResolveItemParameter(parameters, 0);
    if (item.code != 0) return ReportError(item.code, "ItemInfo failed");
    const auto [code, data] = native::GetItemAttributes(item.path);
    if (code != 0) return ReportError(code, "ItemInfo failed");

    const auto has = [flags = data.dwFileAttributes](DWORD flag) { return Flag((flags & flag) != 0); };
    std::string text =
        "Created: " + TimeText(data.ftCreationTime) + "\rModified: " + TimeText(data.ftLastWriteTime) +
        "\rInvisible: " + has(FILE_ATTRIBUTE_HIDDEN) + "\rDirectory: " + has(FILE_ATTRIBUTE_DIRECTORY) + "\r";
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        const std::string path = utf::ToUtf8(item.path);
        const std::string extension(ExtensionOf(path)); // of the whole path, folders and all
        text += "Data size (b): " + std::to_string(data.nFileSizeLow) +
                "\rLocked: " + has(FILE_ATTRIBUTE_READONLY) + "\rAlias: " + Flag(extension == "lnk") +
                "\rType: " + extension + "\r";
    }
    SetResultBufferText(text);
}

} // namespace

FM_Error GetItemInfo(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    return RunFileFunction(parameters, 1, result, Describe);
}

} // namespace corvane
