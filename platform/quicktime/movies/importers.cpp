#include "platform/quicktime/movies/importers.h"

#include <algorithm>
#include <array>
#include <limits>
#include <sys/stat.h>

namespace qt {
namespace {

struct Brand {
    OSType brand;
    OSType importer;
};
constexpr std::array<Brand, 6> kBrands = {{
    {Code("qt  "), Code("MooV")},
    {Code("M4A "), Code("M4A ")},
    {Code("M4B "), Code("M4A ")},
    {Code("M4P "), Code("M4A ")},
    {Code("M4V "), Code("M4V ")},
    {Code("M4VP"), Code("M4V ")},
}};

/// Atoms that a movie file may begin with.
constexpr std::array<OSType, 7> kFirstAtoms = {Code("ftyp"), Code("moov"), Code("mdat"), Code("wide"),
                                               Code("free"), Code("skip"), Code("pnot")};

} // namespace

Imported ImportMovieFile(const ImportSource& source) {
    std::array<std::byte, 12> start{};
    const auto header = std::span(start).first(source.data->Read(0, start));
    const OSType first = BigEndian32(header, 4);
    if (std::find(kFirstAtoms.begin(), kFirstAtoms.end(), first) == kFirstAtoms.end()) return {};
    Imported imported;
    imported.importer = first == Code("ftyp") ? Code("mpg4") : Code("MooV");
    for (const Brand& brand : kBrands)
        if (first == Code("ftyp") && BigEndian32(header, 8) == brand.brand)
            imported.importer = brand.importer;
    ReadMovie read = ReadMovieFile(source.data, *source.reference, source.path);
    if (read.fragmented) {
        Imported other = ImportOther(source);
        if (other.code == noErr) {
            other.importer = imported.importer;
            return other;
        }
    }
    imported.code = read.code;
    imported.movie = std::move(read.movie);
    return imported;
}

OwnedMovie MovieOfSound(const ImportSource& source, std::uint32_t rate,
                        std::shared_ptr<MediaSamples> samples) {
    OwnedMovie movie(NewMovie(0));
    movie->time_scale = static_cast<TimeScale>(rate);
    movie->file = CopyDataReference(*source.reference);
    TrackRecord& track = AddTrack(*movie);
    track.media = std::make_unique<MediaRecord>();
    MediaRecord& media = *track.media;
    media.track = &track;
    media.type = Code("soun");
    media.time_scale = movie->time_scale;
    if (samples->duration > 0) track.segments.push_back({0, samples->duration, 0, samples->duration});
    samples->sources.push_back({CopyDataReference(*source.reference), source.data, false});
    media.samples = std::move(samples);
    struct stat status {};
    const bool dated = !source.path.empty() && ::stat(source.path.c_str(), &status) == 0;
    const std::uint32_t time = dated ? MovieTimeFromUnix(status.st_mtime) : CurrentMovieTime();
    for (std::uint32_t* date : {&movie->created, &movie->modified, &track.created, &track.modified,
                                &media.created, &media.modified})
        *date = time;
    return movie;
}

void AddWholeFileRun(const ImportSource& source, MediaSamples& samples) {
    SampleRun run;
    run.count = 1;
    run.duration = static_cast<std::uint32_t>(
        std::clamp<TimeValue>(samples.duration, 1, std::numeric_limits<std::int32_t>::max()));
    run.size = static_cast<std::uint32_t>(
        std::min<std::uint64_t>(source.data->GetSize(), std::numeric_limits<std::uint32_t>::max()));
    samples.runs.push_back(run);
}

namespace {

using Importer = Imported (*)(const ImportSource&);

/// In the order in which they are asked; the last one takes what the others don't know.
constexpr std::array<Importer, 5> kImporters = {ImportMovieFile, ImportMidi, ImportSoundFile, ImportMpegAudio,
                                                ImportOther};

Imported Import(Handle data_reference, OSType type) {
    OpenedSource opened = OpenDataReference(data_reference, type);
    if (opened.code != noErr) return {opened.code, 0, nullptr};
    const DataReference reference = CopyDataReference(data_reference, type);
    const ImportSource source = {std::move(opened.source), &reference, UnixPathOf(data_reference, type)};
    Imported imported;
    for (const Importer importer : kImporters) {
        imported = importer(source);
        if (imported.code != noMovieFound) break;
    }
    return imported;
}

} // namespace
} // namespace qt

OSErr NewMovieFromDataRef(Movie* movie, Handle data_reference, OSType type) {
    qt::Imported imported = qt::Import(data_reference, type);
    *movie = imported.movie.release();
    return qt::MoviesError(imported.code);
}

OSErr GetMovieDefaultDataRef(Movie movie, qt::DataReference& reference) {
    if (movie == nullptr) return qt::MoviesError(invalidMovie);
    if (movie->file.handle.get() == nullptr) return qt::MoviesError(noDefaultDataRef);
    reference = qt::CopyDataReference(movie->file);
    return qt::MoviesError(noErr);
}

OSErr GetMovieImporterForDataRef(OSType type, Handle data_reference, OSType* subtype) {
    const qt::Imported imported = qt::Import(data_reference, type);
    *subtype = imported.importer;
    return qt::MoviesError(imported.code);
}
