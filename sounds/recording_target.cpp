#include "sounds/recording_target.h"

#include "files/path_parameter.h"
#include "files/temporary_files.h"
#include "platform/win32/errors.h"
#include "platform/win32/file_handles.h"
#include "plugin/host_data.h"
#include "plugin/parameters.h"

namespace corvane {
namespace {

FM_Error MakeTemporaryTarget(RecordingTarget& target, CVSError& error) {
    std::int32_t code = target.made.TakeName(".mov");
    if (code != 0) return error.Fail(code, "Could not get reference to a temporary file.");
    target.file = *target.made;
    target.is_temporary = true;
    code = CreateNewFile(*target.file);
    if (code != 0 && code != kErrorFileExists) return error.Fail(code, "Could not create temporary file.");
    return kFM_ErrorNone;
}

FM_Error MakeFile(const XFileSpec& file, CVSError& error) {
    XFileSpec parent = file;
    parent.MoveToParent();
    if (parent.CheckExists() != 0) return error.Fail(kErrorFileNotFound, "Parent folder must exist.");
    if (!parent.IsDirectory()) return error.Fail(kErrorFolderNotFound, "Parent folder must be a directory.");
    const std::int32_t code = CreateFileOf(file);
    return code == 0 ? kFM_ErrorNone : error.Fail(code, "Failed to create recording file.");
}

FM_Error ReadPath(const FM_Data& parameter, RecordingTarget& target, CVSError& error) {
    XFileSpec file;
    const std::int32_t code = ResolvePathParameter(parameter, file);
    // A path above the root of its drive names no item, and leaves the root behind.
    const bool missing =
        code == kErrorFileNotFound || (code == kErrorFolderNotFound && file.CheckExists() != 0);
    if (code != 0 && !missing) return error.Fail(kErrorWrongParameter, {});
    if (code == 0 && file.IsDirectory())
        return error.Fail(kErrorFileExpected, "Recording target must be a file, not directory.");
    if (missing) {
        if (const FM_Error failed = MakeFile(file, error)) return failed;
        target.made = IntermediateFile(file);
    }
    target.file = file;
    return kFM_ErrorNone;
}

} // namespace

FM_Error ReadRecordingTarget(const FM_DataVect& parameters, RecordingTarget& target, CVSError& error) {
    if (Host(FM_DataVect_Size, &parameters) == 0) return MakeTemporaryTarget(target, error);
    const FM_Data& parameter = *Host(FM_DataVect_At, &parameters, 0);
    switch (Host(FM_Data_GetNativeType, &parameter)) {
    case kFM_TypeNumber:
        if (ReadNumberParameter(parameters, 0).value != 0) return kFM_ErrorNone;
        return MakeTemporaryTarget(target, error);
    case kFM_TypeContainer:
        return error.Fail(kErrorWrongParameter,
                          "QuickTime reference is not a meaningful destination for recording.");
    case kFM_TypeText:
        return Host(FM_Data_IsEmpty, &parameter) ? MakeTemporaryTarget(target, error)
                                                 : ReadPath(parameter, target, error);
    default:
        return error.Fail(kErrorWrongParameter,
                          "Unknown parameter type. Should be Text, Container or Number.");
    }
}

std::int32_t CheckRecordingTarget(const XFileSpec& file) {
    const win32::OwnedFile opened(
        CreateFileW(file.GetNativePathW().c_str(), GENERIC_WRITE, 0, OPEN_EXISTING));
    if (opened) return 0;
    constexpr DWORD kDiskNotReachable = 4312;
    const DWORD error = ::GetLastError();
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case kDiskNotReachable: return kErrorFileNotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION: return kErrorWritePermission;
    default: return static_cast<std::int32_t>(error);
    }
}

} // namespace corvane
