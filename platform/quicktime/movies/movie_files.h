// Movies in files: opening whatever holds a sound or a movie, movie files that samples are added to, and
// reference movies. A movie that is opened reads headers only; nothing is decoded before it is asked for.
#pragma once

#include "platform/quicktime/movies/movies.h"

namespace qt {
class StorageFile;
} // namespace qt

/// A movie file that is being written; ended by CloseMovieStorage.
using DataHandler = std::shared_ptr<qt::StorageFile>*;

inline constexpr OSErr dskFulErr = -34;
inline constexpr OSErr dupFNErr = -48;
inline constexpr OSErr wrPermErr = -61;
inline constexpr OSErr badFileFormat = -208;
inline constexpr OSErr noSoundTrackInMovieErr = -2055;
inline constexpr OSErr couldNotResolveDataRef = -2000;

/// The creator of files that the movie player opens.
inline constexpr OSType kMoviePlayer = qt::Code("TVOD");

inline constexpr std::uint32_t createMovieFileDeleteCurFile = 0x8000'0000;
inline constexpr std::uint32_t createMovieFileDontCreateResFile = 0x1000'0000;

/// Opens a movie file, or a sound file as a movie of one sound track. Codes: those of
/// qt::OpenDataReference; noMovieFound for content that nothing here reads, or a movie file without movie;
/// invalidSampleTable, invalidSampleDescription or badFileFormat for what claims to be a format and isn't.
/// The movie's default data reference is a copy of `data_reference`.
OSErr NewMovieFromDataRef(Movie* movie, Handle data_reference, OSType type);

/// A copy of the movie's default data reference; noDefaultDataRef when it has none.
OSErr GetMovieDefaultDataRef(Movie movie, qt::DataReference& reference);

/// The subtype of the importer that opens this data: 'WAVE', 'AIFF', 'AIFC', 'ULAW' (AU), 'caff', 'MP3 ',
/// 'M4A ', 'M4V ', 'mpg4', 'MooV', 'FLAC', 'Ogg ', 'AMR ', 'ADTS', 'AVI ', 'Midi'… from the content, not the
/// name. noMovieFound when there is none.
OSErr GetMovieImporterForDataRef(OSType type, Handle data_reference, OSType* subtype);

/// Makes a file for a movie, and the movie, empty. `flags`: createMovieFileDeleteCurFile replaces a file that
/// is there (else dupFNErr). Creator and script are not kept. Both results are the caller's.
OSErr CreateMovieStorage(Handle data_reference, OSType type, OSType creator, std::int32_t script,
                         std::uint32_t flags, DataHandler* storage, Movie* movie);
/// Writes the movie's structure, so that the file can be opened. Samples that lie in other files stay there
/// and are referred to, by a path relative to this file and a full one; samples in memory are copied.
OSErr AddMovieToStorage(Movie movie, DataHandler storage);
void CloseMovieStorage(DataHandler storage); ///< null is allowed

/// Writes the movie with all its samples as a new file, and answers the movie in it, of whose tracks the
/// media can be added to; null on failure. Flags as for CreateMovieStorage.
Movie FlattenMovieDataToDataRef(Movie movie, std::uint32_t flags, Handle data_reference, OSType type,
                                OSType creator, std::int32_t script, std::uint32_t create_flags);

namespace qt {

struct StorageCloser {
    void operator()(DataHandler storage) const { CloseMovieStorage(storage); }
};

/// Owner of a movie file that is being written.
using OwnedStorage = std::unique_ptr<std::shared_ptr<StorageFile>, StorageCloser>;

/// Lets samples be added to the end of an opened movie's own file.
OSErr OpenMovieStorage(MovieRecord& movie);

/// The file behind an 'alis' reference as a Unix path; empty for other references and unknown drives.
std::string UnixPathOf(Handle reference, OSType type);
/// An 'alis' reference to a Unix path; couldNotResolveDataRef when no drive covers it.
OSErr ReferenceToUnixPath(const std::string& path, DataReference& reference);

} // namespace qt
