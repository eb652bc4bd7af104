#include "files/file_function.h"
#include "files/functions.h"
#include "platform/text/utf.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "plugin/results.h"

namespace corvane {
namespace {

// The folder's entries, a line each; folders, hidden entries and shortcuts with their markers, or left out.
std::string Lines(const std::u16string& folder, bool list_all) {
    constexpr std::string_view kFolderMark = "\xC6\x92"; // ƒ
    std::string lines; // gathered here: the host's buffer moves with every addition
    native::ListEntries(folder, [&](std::u16string_view name, DWORD attributes) {
        if (name == u"." || name == u"..") return;
        const std::string text = utf::ToUtf8(name);
        const bool is_folder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        const bool is_hidden = (attributes & FILE_ATTRIBUTE_HIDDEN) != 0;
        const bool is_shortcut = ExtensionOf(text) == "lnk";
        if (!list_all && (is_folder || is_hidden || is_shortcut)) return;
        if (!lines.empty()) lines += '\r';
        if (is_folder) lines += kFolderMark;
        if (is_hidden) lines += '~';
        if (is_shortcut) lines += '^';
        lines += text;
    });
    return lines;
}

void List(const FM_DataVect& parameters) {
    XFileSpec folder;
    const std::int32_t code = ResolvePathParameter(parameters, 0, folder);
    if (code != 0) return ReportError(code, "ListFolder failed");
    if (!folder.IsDirectory())
        return ReportError(kErrorFolderExpected, "ListFolder requires destination directory, not file");
    const native::OperationPath path = native::GetOperationPath(folder);
    if (path.code != 0) return ReportError(path.code, "ListFolder failed");
    SetResultBufferText(Lines(path.path, Host(FM_DataVect_AtAsBoolean, &parameters, 1)));
}

} // namespace

FM_Error ListFolder(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    return RunFileFunction(parameters, 2, result, List);
}

} // namespace corvane
