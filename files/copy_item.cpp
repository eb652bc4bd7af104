#include "files/file_function.h"
#include "files/functions.h"
#include "platform/text/utf.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "plugin/results.h"

namespace corvane {
namespace {

bool g_export_mode = false;

class EndOfExportMode {
public:
    EndOfExportMode() = default;
    EndOfExportMode(const EndOfExportMode&) = delete;
    EndOfExportMode& operator=(const EndOfExportMode&) = delete;
    ~EndOfExportMode() { g_export_mode = false; }
};

// Adds the source's extension to a target name without one.
void CompleteTargetName(const FM_DataVect& parameters, XFileSpec& target) {
    XFileSpec source;
    ResolvePathParameter(parameters, 0, source);
    const std::string_view extension = ExtensionOf(source.GetName());
    if (extension.empty() || !ExtensionOf(target.GetName()).empty()) return;
    target.name = target.GetName() + "." + std::string(extension);
}

void Copy(const FM_DataVect& parameters) {
    const bool replace = Host(FM_DataVect_AtAsBoolean, &parameters, 2);
    XFileSpec item;
    std::int32_t code = ResolvePathParameter(parameters, 0, item);
    if (code != 0) return ReportError(code, "Source item not found");
    const native::OperationPath source = native::GetOperationPath(item);
    if (source.code != 0) return ReportError(source.code, "CopyItem failed");

    code = ResolvePathParameter(parameters, 1, item);
    if (code != 0 && code != kErrorFileNotFound) return ReportError(code, "CopyItem failed");
    std::u16string target_name;
    if (!item.IsDirectory()) {
        if (g_export_mode) CompleteTargetName(parameters, item);
        target_name = utf::ToUtf16(item.GetName());
        item.MoveToParent();
        if (!item.IsDirectory()) return ReportError(kErrorFolderExpected, "Destination directory must exist");
    }
    const native::OperationPath folder = native::GetOperationPath(item);
    code = folder.code != 0 ? folder.code : native::CopyItem(source.path, folder.path, replace, target_name);
    if (code != 0) ReportError(code, "CopyItem failed");
}

} // namespace

void SetExportMode() {
    g_export_mode = true;
}

FM_Error CopyItem(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    const EndOfExportMode at_end;
    return RunFileFunction(parameters, 3, result, Copy);
}

} // namespace corvane
