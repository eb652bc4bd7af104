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

std::vector<std::int16_t> MovieTest::DecodedBySox(const std::string& name) const {
    EXPECT_TRUE(Run("sox -D " + name + " -e signed -b 16 -c 2 -r 44100 decoded.raw"));
    const std::string bytes = ReadBytes(Path("decoded.raw"));
    std::vector<std::int16_t> samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), 2 * samples.size());
    return samples;
}

std::vector<std::int16_t> MovieTest::DecodedByFfmpeg(const std::string& name) const {
    EXPECT_TRUE(Run("ffmpeg -y -i " + name + " -ac 2 -ar 44100 -f s16le decoded.raw"));
    const std::string bytes = ReadBytes(Path("decoded.raw"));
    std::vector<std::int16_t> samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), 2 * samples.size());
    return samples;
}

qt::OwnedMovie MovieTest::Open(const std::string& name) const {
    const qt::DataReference reference = Reference(name);
    Movie movie = nullptr;
    EXPECT_EQ(NewMovieFromDataRef(&movie, reference.handle.get(), reference.type), noErr) << name;
    return qt::OwnedMovie(movie);
}

OSErr MovieTest::Export(Movie movie, const std::string& name) const {
    ComponentInstance instance = nullptr;
    EXPECT_EQ(OpenADefaultComponent(qt::kMovieExporter, qt::Code("WAVE"), &instance), noErr);
    const qt::OpenComponent exporter(instance);
    const qt::MemoryHandle description = Block(qt::DescribePcm(kStereo));
    EXPECT_EQ(MovieExportSetSampleDescription(instance, description.get(), qt::Code("soun")), noErr);
    const qt::DataReference reference = Reference(name);
    return ConvertMovieToDataRef(movie, nullptr, reference.handle.get(), reference.type, qt::Code("WAVE"),
                                 qt::Code("TVOD"), createMovieFileDeleteCurFile, instance);
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

qt::MemoryHandle Block(std::span<const std::byte> bytes) {
    Handle handle = nullptr;
    EXPECT_EQ(PtrToHand(bytes.data(), &handle, static_cast<Size>(bytes.size())), noErr);
    return qt::MemoryHandle(handle);
}

qt::OwnedMovie MovieOf(const qt::PcmLayout& layout, std::span<const std::byte> samples) {
    qt::OwnedMovie movie(NewMovie(0));
    const Track track = NewMovieTrack(movie.get(), 0, 0, kFullVolume);
    const Media media = NewTrackMedia(track, qt::Code("soun"), static_cast<TimeScale>(layout.rate), nullptr,
                                      qt::Code("hndl"));
    const qt::MemoryHandle description = Block(qt::DescribePcm(layout));
    EXPECT_EQ(BeginMediaEdits(media), noErr);
    const auto frames = static_cast<std::int64_t>(samples.size() / layout.FrameBytes());
    EXPECT_EQ(AddMediaSample(media, samples, 1, description.get(), frames), noErr);
    EXPECT_EQ(EndMediaEdits(media), noErr);
    EXPECT_EQ(InsertMediaIntoTrack(track, 0, 0, GetMediaDuration(media), kNormalRate), noErr);
    return movie;
}

} // namespace corvane::test
