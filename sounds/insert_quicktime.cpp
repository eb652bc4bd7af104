#include "sounds/functions.h"

#include "files/can_open_file.h"
#include "files/data_reference.h"
#include "files/database_folder.h"
#include "files/intermediate_file.h"
#include "files/local_files.h"
#include "files/movie_file.h"
#include "files/path_parameter.h"
#include "files/reference_movie.h"
#include "files/references.h"
#include "files/temporary_files.h"
#include "platform/quicktime/graphics_importer.h"
#include "platform/win32/dialogs.h"
#include "plugin/drawing_port.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "plugin/parameters.h"
#include "plugin/workarounds.h"
#include "sounds/network_copy.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace corvane {
namespace {

constexpr std::int32_t kNeitherMovieNorImage = -2003;

struct PixelSize {
    std::uint16_t width = 0;
    std::uint16_t height = 0;
};

std::int32_t ChooseFile(XFileSpec& file) {
    std::array<WCHAR, MAX_PATH> path{};
    OPENFILENAMEW dialog;
    dialog.lpstrFile = path.data();
    dialog.nMaxFile = path.size();
    dialog.lpstrTitle = u"Insert QuickTime";
    dialog.lpstrButton = u"Import";
    dialog.Flags = OFN_FILEMUSTEXIST | OFN_EXPLORER | OFN_ENABLESIZING | OFN_HIDEREADONLY;
    if (!GetOpenFileNameW(&dialog)) return kErrorUserCancelled;
    return file.SetFromNativePathW(path.data());
}

FM_Error FindFile(const FM_DataVect& parameters, XFileSpec& file, CVSError& error) {
    const FM_Data& parameter = *Host(FM_DataVect_At, &parameters, 0);
    const std::int32_t path_code = ResolvePathParameter(parameter, file);
    if (path_code == 0) return kFM_ErrorNone;
    const Read<std::string> text = ReadTextParameter(parameters, 0);
    if (text.code != 0) return error.Fail(text.code, "Could not get parameter #1 as text.");
    XFileSpec database;
    std::int32_t code = DatabaseFolder(database);
    if (code != 0 && code != kNetworkDatabase) return error.Fail(code, "Could not get database file path.");
    code = ResolveReferenceText(ReferenceTextOf(parameter), file);
    if (code == 0) return kFM_ErrorNone;
    // That a path leads to nothing, or a dialog was cancelled, says more than that it is no reference either.
    const bool tells_more = path_code == kErrorFileNotFound || path_code == kErrorFolderNotFound ||
                            path_code == kErrorUserCancelled;
    return error.Fail(tells_more ? path_code : code, "Failed to find input file.");
}

std::uint16_t Limited(std::int32_t length) {
    return static_cast<std::uint16_t>(std::clamp(length, 0, int{std::numeric_limits<std::uint16_t>::max()}));
}

// Zero by zero for an image whose size can't be had.
PixelSize SizeOfImage(const qt::DataReference& reference) {
    GraphicsImportComponent opened = nullptr;
    if (GetGraphicsImporterForDataRef(reference.handle.get(), reference.type, &opened) != noErr) return {};
    const qt::OpenComponent importer(opened);
    Rect bounds{};
    if (GraphicsImportGetNaturalBounds(opened, &bounds) != noErr) return {};
    return {Limited(bounds.right - bounds.left), Limited(bounds.bottom - bounds.top)};
}

std::int32_t FindPicture(const XFileSpec& file, bool& found) {
    qt::OwnedMovie movie;
    if (const std::int32_t code = OpenMovieFile(file, movie); code != 0) return code;
    found = GetMovieIndTrackType(movie.get(), 1, qt::Code("eyes"), movieTrackCharacteristic) != nullptr;
    return 0;
}

// Files that were made on the way: they go with this, unless the result keeps them.
using MadeFiles = std::vector<IntermediateFile>;

// Puts in the file's place what is inserted for it: a copy of a file on the network, and a reference movie
// for a sound.
FM_Error PrepareMovie(XFileSpec& file, bool local, MadeFiles& made, CVSError& error) {
    bool has_picture = false;
    std::int32_t code = FindPicture(file, has_picture);
    if (code != 0) return error.Fail(code, {});
    if (!local && WorkaroundValue(Workaround::kRemoteFile)) {
        code = CopyFromNetwork(file);
        if (code != 0) return error.Fail(code, "Copying file to a temporary folder has failed.");
        made.emplace_back(file);
    }
    if (!has_picture && WorkaroundValue(Workaround::kLinkMedia)) {
        const ReferenceMovie linked = MakeReferenceMovie(file);
        if (linked.code != 0) return error.Fail(linked.code, "Linking media has failed.");
        if (!linked.replaced) made.emplace_back(file);
    }
    return kFM_ErrorNone;
}

FM_Error Insert(XFileSpec file, FM_Data& result, CVSError& error) {
    qt::DataReference reference;
    std::int32_t code = DataReferenceOf(file, reference);
    if (code != 0) return error.Fail(code, "Failed to alias input file.");
    // A drive in small letters would keep the file from lying beside the database: the reference has
    // capitals.
    if (XFileSpec spelled; FileOfDataReference(reference, spelled) == 0) file = std::move(spelled);
    const std::string path = file.GetNativePath();
    const FileLocality place = IsOnLocalDrive(path);
    if (place.code != 0) return error.Fail(place.code, {});
    const FileUse use = place.local ? CanOpenFile(reference) : UseByExtension(path);
    if (use.code != 0) return error.Fail(use.code, "QuickTime does not seem to understand to this file.");
    PixelSize size;
    MadeFiles made;
    if (use.as_image) {
        size = SizeOfImage(reference);
    } else if (!use.as_movie) {
        return error.Fail(kNeitherMovieNorImage, {});
    } else if (const FM_Error failed = PrepareMovie(file, place.local, made, error);
               failed != kFM_ErrorNone) {
        return failed;
    }
    code = PutFileReferenceResult(result, file, "movie", size.width, size.height);
    if (code != 0) return error.Fail(code, "Failed to set result.");
    for (IntermediateFile& file_made : made) file_made.Keep();
    error.SetCode(0);
    return kFM_ErrorNone;
}

FM_Error InsertParameter(const FM_DataVect& parameters, FM_Data& result, CVSError& error) {
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    if (count > 1) return error.Fail(kErrorWrongParameter, "This function requires zero or 1 parameter.");
    XFileSpec file;
    if (count == 0 || Host(FM_Data_GetNativeType, Host(FM_DataVect_At, &parameters, 0)) == kFM_TypeNumber) {
        const std::int32_t code = ChooseFile(file);
        if (code != 0) return error.Fail(code, "Choosing file failed.");
    } else if (const FM_Error failed = FindFile(parameters, file, error); failed != kFM_ErrorNone) {
        return failed;
    }
    return Insert(std::move(file), result, error);
}

} // namespace

FM_Error InsertQuickTime(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_InsertQuickTime");
    const qt::CurrentPort port(DrawingPort());
    ClearResult(result);
    return InsertParameter(parameters, result, error);
}

} // namespace corvane
