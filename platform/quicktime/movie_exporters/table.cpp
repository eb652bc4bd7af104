#include "platform/quicktime/movie_exporters/sound_exporter.h"

#include <array>

namespace qt {
namespace {

using enum SampleEncoding;

constexpr std::array kWaveSamples = {kSigned16, kUnsigned8, kSigned24, kSigned32, kFloat32, kFloat64};
constexpr std::array kAiffSamples = {kSigned16, kSigned8, kSigned24, kSigned32};
constexpr std::array kAifcSamples = {kSigned16, kSigned24, kSigned32, kFloat32, kFloat64, kMuLaw, kALaw};
constexpr std::array kAllSamples = {kSigned16, kSigned8, kSigned24, kSigned32,
                                    kFloat32,  kFloat64, kMuLaw,    kALaw};
constexpr std::array kMovieSamples = {kSigned16, kUnsigned8, kSigned24, kSigned32,
                                      kFloat32,  kFloat64,   kMuLaw,    kALaw};
constexpr std::array kLosslessSamples = {kSigned16, kSigned24};

constexpr std::array<std::uint32_t, 12> kAacRates = {8000,  11025, 12000, 16000, 22050, 24000,
                                                     32000, 44100, 48000, 64000, 88200, 96000};
constexpr std::array<std::uint32_t, 9> kMp3Rates = {8000,  11025, 12000, 16000, 22050,
                                                    24000, 32000, 44100, 48000};
constexpr std::array<std::uint32_t, 5> kOpusRates = {48000, 24000, 16000, 12000, 8000};

constexpr std::array<SoundExporterRow, 13> kExporters = {{
    {Code("WAVE"), "Wave", "Exports a QuickTime Movie to Wave.", {.encodings = kWaveSamples}, OpenWaveWriter},
    {Code("AIFF"),
     "AIFF",
     "Exports a QuickTime Movie to AIFF.",
     {.encodings = kAiffSamples, .order = ByteOrder::kBig},
     OpenPcmFileWriter},
    {Code("AIFC"),
     "AIFF-C",
     "Exports a QuickTime Movie to AIFF-C.",
     {.encodings = kAifcSamples, .order = ByteOrder::kBig},
     OpenPcmFileWriter},
    {Code("ULAW"),
     "AU",
     "Exports a QuickTime Movie to AU.",
     {.encodings = kAllSamples, .order = ByteOrder::kBig},
     OpenPcmFileWriter},
    {Code("caff"),
     "Core Audio Format",
     "Exports a QuickTime Movie to a CAF file.",
     {.encodings = kAllSamples, .order = ByteOrder::kEither},
     OpenPcmFileWriter},
    {Code("ima4"),
     "IMA 4:1",
     "Exports a QuickTime Movie to AIFF-C, compressed 4:1.",
     {.most_channels = 2, .order = ByteOrder::kBig},
     OpenEncodedFileWriter},
    {Code("M4A "),
     "MPEG-4 Audio, AAC",
     "Exports a QuickTime Movie to MPEG-4 audio, compressed as AAC.",
     {.rates = kAacRates, .most_channels = 8, .bit_rate = {16, 320, 128}},
     OpenEncodedFileWriter},
    {Code("alac"),
     "MPEG-4 Audio, lossless",
     "Exports a QuickTime Movie to MPEG-4 audio, compressed without loss.",
     {.encodings = kLosslessSamples, .most_channels = 8},
     OpenEncodedFileWriter},
    {Code("MP3 "),
     "MP3",
     "Exports a QuickTime Movie to MP3.",
     {.rates = kMp3Rates, .most_channels = 2, .bit_rate = {8, 320, 128}},
     OpenEncodedFileWriter},
    {Code("FLAC"),
     "FLAC",
     "Exports a QuickTime Movie to FLAC.",
     {.encodings = kLosslessSamples, .most_channels = 8},
     OpenEncodedFileWriter},
    {Code("Ogg "),
     "Ogg Vorbis",
     "Exports a QuickTime Movie to Ogg Vorbis.",
     {.most_channels = 8, .quality = {0, 10, 5}},
     OpenEncodedFileWriter},
    {Code("Opus"),
     "Opus",
     "Exports a QuickTime Movie to Opus in an Ogg file.",
     {.rates = kOpusRates, .usual_rate = 48000, .most_channels = 2, .bit_rate = {6, 510, 96}},
     OpenEncodedFileWriter},
    {Code("MooV"),
     "QuickTime Movie",
     "Exports a QuickTime Movie to a movie of uncompressed sound.",
     {.encodings = kMovieSamples, .order = ByteOrder::kEither},
     OpenEncodedFileWriter},
}};

} // namespace

std::span<const SoundExporterRow> SoundExporters() {
    return kExporters;
}

} // namespace qt
