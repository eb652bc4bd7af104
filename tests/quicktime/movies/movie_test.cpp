#include "tests/quicktime/movies/movie_test.h"

#include "tests/support/files.h"

#include <cstdlib>
#include <cstring>

namespace corvane::test {

MovieTest::MovieTest() : folder_(drives_.Map("C:", "drive")) {}

qt::DataReference MovieTest::Reference(const std::string& name) const {
    qt::DataReference reference;
    EXPECT_EQ(qt::ReferenceToUnixPath(Path(name), reference), noErr);
    return reference;
}

bool MovieTest::Run(const std::string& command) const {
    return std::system(("cd '" + folder_ + "' && (" + command + ") >/dev/null 2>&1").c_str()) == 0;
}

std::vector<std::int16_t> MovieTest::DecodedBy(const std::string& command) const {
    EXPECT_TRUE(Run(command));
    const std::string bytes = ReadBytes(Path("decoded.raw"));
    std::vector<std::int16_t> samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), 2 * samples.size());
    return samples;
}

std::vector<std::int16_t> MovieTest::DecodedBySox(const std::string& name) const {
    return DecodedBy("sox -D " + name + " -e signed -b 16 -c 2 -r 44100 decoded.raw");
}

std::vector<std::int16_t> MovieTest::DecodedByFfmpeg(const std::string& name) const {
    return DecodedBy("ffmpeg -y -i " + name + " -ac 2 -ar 44100 -f s16le decoded.raw");
}

qt::OwnedMovie MovieTest::Open(const std::string& name) const {
    const qt::DataReference reference = Reference(name);
    Movie movie = nullptr;
    EXPECT_EQ(NewMovieFromDataRef(&movie, reference.handle.get(), reference.type), noErr) << name;
    return qt::OwnedMovie(movie);
}

OSErr MovieTest::OpeningCode(const std::string& name, const std::string& bytes) const {
    WriteBytes(Path(name), bytes);
    const qt::DataReference reference = Reference(name);
    Movie movie = nullptr;
    const OSErr code = NewMovieFromDataRef(&movie, reference.handle.get(), reference.type);
    EXPECT_EQ(code == noErr, movie != nullptr);
    const qt::OwnedMovie owned(movie);
    return code;
}

OSErr MovieTest::Export(Movie movie, const std::string& name) const {
    const qt::OpenComponent exporter = OpenComponentOf(qt::kMovieExporter, qt::Code("WAVE"));
    const qt::MemoryHandle description = HandleOf(qt::DescribePcm(kStereo));
    EXPECT_EQ(MovieExportSetSampleDescription(exporter.get(), description.get(), qt::Code("soun")), noErr);
    return ExportWith(exporter.get(), movie, name);
}

OSErr MovieTest::ExportWith(MovieExportComponent exporter, Movie movie, const std::string& name,
                            std::uint32_t flags) const {
    const qt::DataReference reference = Reference(name);
    return ConvertMovieToDataRef(movie, nullptr, reference.handle.get(), reference.type, 0, 0, flags,
                                 exporter);
}

std::vector<std::int16_t> MovieTest::Exported(Movie movie) const {
    EXPECT_EQ(Export(movie, "exported.wav"), noErr);
    return WaveSamples(Path("exported.wav"));
}

std::vector<std::int16_t> WaveSamples(const std::string& path) {
    const std::string bytes = ReadBytes(path);
    std::vector<std::int16_t> samples(bytes.size() > 44 ? (bytes.size() - 44) / 2 : 0);
    if (!samples.empty()) std::memcpy(samples.data(), bytes.data() + 44, 2 * samples.size());
    return samples;
}

std::vector<std::int16_t> Noise(std::size_t count, std::uint32_t seed) {
    std::vector<std::int16_t> samples(count);
    for (auto& sample : samples)
        sample = static_cast<std::int16_t>((seed = seed * 1664525 + 1013904223) >> 16);
    return samples;
}

void AddSamples(Media media, std::span<const std::int16_t> samples) {
    const qt::MemoryHandle description = HandleOf(qt::DescribePcm(kStereo));
    const auto frames = static_cast<std::int64_t>(samples.size() / 2);
    EXPECT_EQ(BeginMediaEdits(media), noErr);
    EXPECT_EQ(AddMediaSample(media, std::as_bytes(samples), 1, description.get(), frames), noErr);
    EXPECT_EQ(EndMediaEdits(media), noErr);
}

Track AddTrack(Movie movie, std::span<const std::int16_t> samples) {
    const Track track = NewMovieTrack(movie, 0, 0, kFullVolume);
    const Media media = NewTrackMedia(track, qt::Code("soun"), 44100, nullptr, qt::Code("hndl"));
    AddSamples(media, samples);
    EXPECT_EQ(InsertMediaIntoTrack(track, 0, 0, GetMediaDuration(media), kNormalRate), noErr);
    return track;
}

qt::Bytes DescriptionOf(Media media) {
    const qt::MemoryHandle block(NewHandle(0));
    EXPECT_EQ(GetMediaSampleDescription(media, 1, block.get()), noErr);
    const auto bytes = qt::HandleBytes(block.get());
    return {bytes.begin(), bytes.end()};
}

qt::OwnedMovie MovieOf(std::span<const std::int16_t> samples) {
    qt::OwnedMovie movie(NewMovie(0));
    AddTrack(movie.get(), samples);
    return movie;
}

} // namespace corvane::test
