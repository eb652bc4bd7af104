#include "sounds/export_movie.h"

#include "files/data_reference.h"
#include "platform/quicktime/movies/movie_files.h"
#include "platform/win32/progress_display.h"

namespace corvane {
namespace {

OSErr ShowProgress(Movie, double done, void* display) {
    static_cast<win32::ProgressDisplay*>(display)->Show(done);
    return noErr;
}

} // namespace

std::int32_t ExportMovie(MovieExportComponent exporter, Movie movie, const XFileSpec& file) {
    OSType file_type = 0;
    if (const std::int32_t code = MovieExportGetFileType(exporter, &file_type); code != 0) return code;
    qt::DataReference reference;
    if (const std::int32_t code = DataReferenceOf(file, reference); code != 0) return code;
    win32::ProgressDisplay display("Exporting sound");
    MovieExportSetProgressProc(exporter, ShowProgress, &display);
    const OSErr code = ConvertMovieToDataRef(movie, nullptr, reference.handle.get(), reference.type,
                                             file_type, kMoviePlayer, createMovieFileDeleteCurFile, exporter);
    MovieExportSetProgressProc(exporter, nullptr, nullptr);
    return code;
}

} // namespace corvane
