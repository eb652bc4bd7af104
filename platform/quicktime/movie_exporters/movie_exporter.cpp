#include "platform/quicktime/movie_exporters/movie_exporter.h"

#include "platform/quicktime/movies/file_io.h"
#include "platform/quicktime/movies/movie_files.h"

#include <unistd.h>

namespace qt {

ExportedFile::~ExportedFile() {
    if (descriptor_ < 0) return;
    ::close(descriptor_);
    if (!completed_) ::unlink(path_.c_str());
}

OSErr ExportedFile::Create(const std::string& path, bool replace) {
    descriptor_ = CreateFile(path, replace);
    if (descriptor_ < 0) return static_cast<OSErr>(descriptor_);
    path_ = path;
    return noErr;
}

OSErr ExportedFile::Write(std::span<const std::byte> bytes) {
    const OSErr code = WriteAt(descriptor_, end_, bytes);
    end_ += bytes.size();
    return code;
}

OSErr MovieExporter::Tell(const MovieRecord& movie, double done) const {
    if (progress_ == nullptr) return noErr;
    return progress_(const_cast<MovieRecord*>(&movie), done, progress_context_);
}

std::unique_ptr<Component> OpenMovieExporter(OSType subtype) {
    for (const MovieExporterRow& row : MovieExporters())
        if (subtype == kAnySubtype || row.subtype == subtype) return row.open();
    return nullptr;
}

namespace {

MovieExporter* ExporterOf(ComponentInstance instance) {
    return dynamic_cast<MovieExporter*>(instance);
}

} // namespace
} // namespace qt

ComponentResult MovieExportSetSampleDescription(MovieExportComponent exporter, Handle description,
                                                OSType media_type) {
    qt::MovieExporter* const opened = qt::ExporterOf(exporter);
    return opened != nullptr ? opened->SetSampleDescription(qt::HandleBytes(description), media_type)
                             : badComponentInstance;
}

ComponentResult MovieExportGetFileType(MovieExportComponent exporter, OSType* type) {
    const qt::MovieExporter* const opened = qt::ExporterOf(exporter);
    if (opened == nullptr) return badComponentInstance;
    *type = opened->FileType();
    return noErr;
}

ComponentResult MovieExportSetProgressProc(MovieExportComponent exporter, MovieProgressProc proc,
                                           void* context) {
    qt::MovieExporter* const opened = qt::ExporterOf(exporter);
    if (opened == nullptr) return badComponentInstance;
    opened->SetProgress(proc, context);
    return noErr;
}

OSErr ConvertMovieToDataRef(Movie movie, Track only_track, Handle data_reference, OSType reference_type,
                            OSType, OSType, std::uint32_t flags, MovieExportComponent exporter) {
    qt::MovieExporter* const opened = qt::ExporterOf(exporter);
    if (movie == nullptr) return qt::MoviesError(invalidMovie);
    if (opened == nullptr) return qt::MoviesError(badComponentInstance);
    const std::string path = qt::UnixPathOf(data_reference, reference_type);
    if (path.empty())
        return qt::MoviesError(reference_type == qt::kAliasDataHandler ? fnfErr : cantFindHandler);
    qt::ExportedFile file;
    OSErr code = file.Create(path, (flags & createMovieFileDeleteCurFile) != 0);
    if (code == noErr) code = opened->Export(*movie, only_track, file);
    if (code == noErr) file.Complete();
    return qt::MoviesError(code);
}
