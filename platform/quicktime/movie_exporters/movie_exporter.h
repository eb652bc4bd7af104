// Movie exporters: components of type 'spit' that write a movie into a file of their format.
//
// An exporter is opened with OpenADefaultComponent(qt::kMovieExporter, format); its operations are below.
// They answer 0, a code, or badComponentInstance. To add a format: a row in table.cpp, over a writer that is
// there or a new one (see sound_exporter.h).
#pragma once

#include "platform/quicktime/components.h"
#include "platform/quicktime/movies/atom_containers.h"
#include "platform/quicktime/movies/movies.h"

#include <memory>
#include <string_view>
#include <vector>

using MovieExportComponent = ComponentInstance;

inline constexpr OSErr badComponentInstance = -3000 - 1;
inline constexpr OSErr fileBoundsErr = -1309; ///< the file would grow beyond what its format can say
inline constexpr OSErr progressProcAborted = -2019;

/// Told how far an export has come, from 0 to 1; both ends are always told. An answer other than 0 ends the
/// export, which answers it.
using MovieProgressProc = OSErr (*)(Movie movie, double done, void* context);

/// Sets the description of the samples to be written: for 'soun', format, channels, sample size and rate
/// count; the byte order is brought to the file format's. paramErr for what the exporter can't write.
ComponentResult MovieExportSetSampleDescription(MovieExportComponent exporter, Handle description,
                                                OSType media_type);
/// The format's file type, which is the exporter's subtype.
ComponentResult MovieExportGetFileType(MovieExportComponent exporter, OSType* type);
/// Who is told of the progress; null: nobody.
ComponentResult MovieExportSetProgressProc(MovieExportComponent exporter, MovieProgressProc proc,
                                           void* context);

/// Lets the user change the settings, and hear how `sound` (null: none) begins.
/// A Cancel changes nothing, and is no error.
ComponentResult MovieExportDoUserDialog(MovieExportComponent exporter, Movie sound, bool* cancelled);
/// The settings as an atom container, which becomes the caller's; and settings that the same format's
/// exporter gave. Those of another format, and bytes that are none, are paramErr and change nothing.
ComponentResult MovieExportGetSettingsAsAtomContainer(MovieExportComponent exporter,
                                                      QTAtomContainer* settings);
ComponentResult MovieExportSetSettingsFromAtomContainer(MovieExportComponent exporter,
                                                        QTAtomContainer settings);

/// Writes the whole movie, or one track of it, into the file of an 'alis' reference. `flags`: with
/// createMovieFileDeleteCurFile a file that is there is replaced, else it is dupFNErr. File type and creator
/// are not kept. After a failure there is no file. Codes besides those of reading: dskFulErr, wrPermErr,
/// fnfErr (no such folder), noSoundTrackInMovieErr, fileBoundsErr, cantOpenHandler without the encoder's
/// module.
OSErr ConvertMovieToDataRef(Movie movie, Track only_track, Handle data_reference, OSType reference_type,
                            OSType file_type, OSType creator, std::uint32_t flags,
                            MovieExportComponent exporter);

namespace qt {

inline constexpr OSType kMovieExporter = Code("spit");

/// What is told of an exporter that takes sound.
struct SoundExporterInfo {
    OSType subtype = 0;
    std::string_view name;
    std::string_view description;
};
/// In the order of the table.
std::vector<SoundExporterInfo> ListSoundExporters();

/// The exporter of a format; null when there is none. kAnySubtype: the first.
std::unique_ptr<Component> OpenMovieExporter(OSType subtype);

} // namespace qt
