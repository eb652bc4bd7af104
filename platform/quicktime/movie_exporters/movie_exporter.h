// Movie exporters: components of type 'spit' that write a movie into a file of their format.
//
// An exporter is opened with OpenADefaultComponent(qt::kMovieExporter, format); its operations are below.
// They answer 0, a code, or kBadComponentSelector for what an exporter does not have. To add one: a file with
// a class derived from qt::MovieExporter, and a row in table.cpp.
#pragma once

#include "platform/quicktime/components.h"
#include "platform/quicktime/movies/movies.h"
#include "platform/quicktime/movies/sound_renderer.h"

#include <string>
#include <string_view>

using MovieExportComponent = ComponentInstance;

inline constexpr OSErr badComponentInstance = -3000 - 1;
inline constexpr OSErr fileBoundsErr = -1309; ///< the file would grow beyond what its format can say
inline constexpr OSErr progressProcAborted = -2019;

/// Told how far an export has come, from 0 to 1; both ends are always told. An answer other than 0 ends the
/// export, which answers it.
using MovieProgressProc = OSErr (*)(Movie movie, double done, void* context);

/// Sets the description of the samples to be written: for 'soun', format, channels, sample size and rate
/// count. paramErr for what the exporter can't write.
ComponentResult MovieExportSetSampleDescription(MovieExportComponent exporter, Handle description,
                                                OSType media_type);
/// The format's file type, which is the exporter's subtype.
ComponentResult MovieExportGetFileType(MovieExportComponent exporter, OSType* type);
/// Who is told of the progress; null: nobody.
ComponentResult MovieExportSetProgressProc(MovieExportComponent exporter, MovieProgressProc proc,
                                           void* context);

/// Writes the whole movie, or one track of it, into the file of an 'alis' reference. `flags`: with
/// createMovieFileDeleteCurFile a file that is there is replaced, else it is dupFNErr. File type and creator
/// are not kept. After a failure there is no file. Codes besides those of reading: dskFulErr, wrPermErr,
/// fnfErr (no such folder), noSoundTrackInMovieErr, fileBoundsErr.
OSErr ConvertMovieToDataRef(Movie movie, Track only_track, Handle data_reference, OSType reference_type,
                            OSType file_type, OSType creator, std::uint32_t flags,
                            MovieExportComponent exporter);

namespace qt {

inline constexpr OSType kMovieExporter = Code("spit");

/// A new file, removed again unless it is completed.
class ExportedFile {
public:
    ExportedFile() = default;
    ExportedFile(const ExportedFile&) = delete;
    ExportedFile& operator=(const ExportedFile&) = delete;
    ~ExportedFile();

    OSErr Create(const std::string& path, bool replace);
    OSErr Write(std::span<const std::byte> bytes);
    void Complete() { completed_ = true; }

private:
    std::string path_;
    int descriptor_ = -1;
    std::uint64_t end_ = 0;
    bool completed_ = false;
};

class MovieExporter : public Component {
public:
    virtual OSErr SetSampleDescription(std::span<const std::byte> description, OSType media_type) = 0;
    [[nodiscard]] virtual OSType FileType() const = 0;
    /// Writes the movie (`only`: null for all of it) and tells the progress.
    virtual OSErr Export(const MovieRecord& movie, const TrackRecord* only, ExportedFile& file) = 0;

    void SetProgress(MovieProgressProc proc, void* context) {
        progress_ = proc;
        progress_context_ = context;
    }

protected:
    OSErr Tell(const MovieRecord& movie, double done) const;

private:
    MovieProgressProc progress_ = nullptr;
    void* progress_context_ = nullptr;
};

/// A row of the table of exporters.
struct MovieExporterRow {
    OSType subtype;
    OSType manufacturer; ///< 'soun': takes sound
    std::string_view name;
    std::string_view description;
    std::unique_ptr<Component> (*open)();
};
std::span<const MovieExporterRow> MovieExporters();

/// The exporter of a format; null when there is none. kAnySubtype: the first.
std::unique_ptr<Component> OpenMovieExporter(OSType subtype);

std::unique_ptr<Component> MakeWaveExporter();

} // namespace qt
