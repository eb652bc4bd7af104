#include "files/can_open_file.h"

#include "files/data_reference.h"
#include "files/local_files.h"
#include "platform/quicktime/graphics_importer.h"
#include "platform/quicktime/movies/movie_files.h"
#include "plugin/errors.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace corvane {
namespace {

constexpr auto kMovies = std::to_array<std::string_view>(
    {"AVI", "WMV", "MOV", "FLI", "FLC", "MPG", "MPE", "MPEG", "DV", "RM",  "QT",
     "QTW", "WAV", "AIF", "MP3", "MP2", "AU",  "MID", "MIDI", "RA", "RAM", "SND"});
constexpr auto kImages = std::to_array<std::string_view>(
    {"BMP", "GIF", "JPG", "JPE", "JPEG", "PCX", "TIF", "TIFF", "PNG", "PIC", "JP2"});

// An image is preferred to a movie: pictures open as movies of one frame, where they open as movies at all.
FileUse UseByContent(const qt::DataReference& reference) {
    GraphicsImportComponent opened = nullptr;
    GetGraphicsImporterForDataRef(reference.handle.get(), reference.type, &opened);
    const bool image = qt::OpenComponent(opened) != nullptr;
    OSType importer = 0;
    const bool movie = GetMovieImporterForDataRef(reference.type, reference.handle.get(), &importer) == noErr;
    return {0, image, movie, image};
}

} // namespace

FileUse UseByExtension(std::string_view path) {
    const std::size_t dot = path.rfind('.');
    if (dot == std::string_view::npos) return {kErrorBadName, false, false, false};
    std::string extension(path.substr(dot + 1));
    for (char& character : extension)
        if (character >= 'a' && character <= 'z') character = static_cast<char>(character - 'a' + 'A');
    if (extension == "PDF") return {0, true, true, false};
    const bool image = std::ranges::find(kImages, extension) != kImages.end();
    return {0, image, std::ranges::find(kMovies, extension) != kMovies.end(), image};
}

FileUse CanOpenFile(const qt::DataReference& reference) {
    XFileSpec file;
    const std::int32_t code = FileOfDataReference(reference, file);
    if (code != 0 && code != kErrorFileNotFound) return {code, false, false, false};
    const std::string path = file.GetNativePath();
    const FileLocality place = IsLocalFile(path);
    if (place.code != 0) return {place.code, false, false, false};
    return place.local ? UseByContent(reference) : UseByExtension(path);
}

} // namespace corvane
