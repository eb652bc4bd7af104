// What the tests of movies share: a scratch drive, sounds made by other programs, and samples read back.
#pragma once

#include "platform/quicktime/movie_exporters/movie_exporter.h"
#include "platform/quicktime/movies/media.h"
#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/sound_description.h"
#include "tests/quicktime/components.h"
#include "tests/support/fake_host.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvane::test {

class MovieTest : public testing::Test {
protected:
    MovieTest();

    /// Unix path of a file on the drive.
    [[nodiscard]] std::string Path(const std::string& name) const { return folder_ + "/" + name; }
    [[nodiscard]] qt::DataReference Reference(const std::string& name) const;

    /// Runs a command in the drive's folder; false when it fails.
    [[nodiscard]] bool Run(const std::string& command) const;
    /// 16-bit samples of a file as another program decodes it to stereo at 44,100 Hz, without dither.
    [[nodiscard]] std::vector<std::int16_t> DecodedBySox(const std::string& name) const;
    [[nodiscard]] std::vector<std::int16_t> DecodedByFfmpeg(const std::string& name) const;

    [[nodiscard]] qt::OwnedMovie Open(const std::string& name) const;
    /// Writes the file, and opens it or fails with the code.
    [[nodiscard]] OSErr OpeningCode(const std::string& name, const std::string& bytes) const;
    /// Exports as 16-bit stereo at 44,100 Hz.
    [[nodiscard]] OSErr Export(Movie movie, const std::string& name) const;
    [[nodiscard]] OSErr ExportWith(MovieExportComponent exporter, Movie movie, const std::string& name,
                                   std::uint32_t flags = createMovieFileDeleteCurFile) const;
    [[nodiscard]] std::vector<std::int16_t> Exported(Movie movie) const;

    ScratchDrives drives_;
    std::string folder_;

private:
    [[nodiscard]] std::vector<std::int16_t> DecodedBy(const std::string& command) const;
};

/// Samples behind a WAVE header of 44 bytes.
std::vector<std::int16_t> WaveSamples(const std::string& path);

/// The same noise for the same seed.
std::vector<std::int16_t> Noise(std::size_t count, std::uint32_t seed);

inline Track FirstSoundTrack(Movie movie) {
    return GetMovieIndTrackType(movie, 1, qt::Code("soun"), movieTrackMediaType);
}

constexpr qt::PcmLayout kStereo = {qt::SampleEncoding::kSigned16, false, 2, 44100};

/// Adds samples of kStereo to the media as one block.
void AddSamples(Media media, std::span<const std::int16_t> samples);
/// Adds a track with a media in memory that has these samples.
Track AddTrack(Movie movie, std::span<const std::int16_t> samples);
/// A description of the media's first samples.
qt::Bytes DescriptionOf(Media media);

/// A movie of one such track.
qt::OwnedMovie MovieOf(std::span<const std::int16_t> samples);

} // namespace corvane::test
