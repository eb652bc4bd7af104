// Importers: each recognises one family of sound files and makes the one-track movie of it.
#pragma once

#include "platform/quicktime/movies/movie_atoms.h"

namespace qt {

/// What every importer is given.
struct ImportSource {
    std::shared_ptr<DataSource> data;
    const DataReference* reference = nullptr; ///< the data's own
    std::string path;                         ///< Unix path; empty for data that is no file
};

/// What an importer found. Code noMovieFound: this is not its format.
struct Imported {
    OSErr code = noMovieFound;
    OSType importer = 0; ///< subtype that stands for the format
    OwnedMovie movie;
};

Imported ImportMovieFile(const ImportSource& source); ///< QuickTime and MPEG-4
Imported
ImportSoundFile(const ImportSource& source);     ///< what libsndfile reads: WAVE, AIFF, AU, CAF, FLAC, Ogg
Imported ImportMidi(const ImportSource& source); ///< Standard MIDI files
Imported ImportMpegAudio(const ImportSource& source); ///< MPEG layers I to III
Imported ImportOther(const ImportSource& source);     ///< whatever else the sound module demultiplexes

/// The movie of one sound over these samples, dated as its file.
OwnedMovie MovieOfSound(const ImportSource& source, std::uint32_t rate,
                        std::shared_ptr<MediaSamples> samples);

/// One sample that stands for the whole data: sounds whose packets nobody but their library finds are
/// referred to in this way.
void AddWholeFileRun(const ImportSource& source, MediaSamples& samples);

} // namespace qt
