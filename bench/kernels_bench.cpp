// The inner loops, one by one. Figures, never tests.
#include "files/file_spec.h"
#include "platform/fmwrapper/decimal.h"
#include "platform/fmwrapper/fmwrapper.h"
#include "platform/fmwrapper/session.h"
#include "platform/text/utf.h"
#include "plugin/host_data.h"
#include "plugin/time_text.h"
#include "sounds/amplify_samples.h"
#include "sounds/information_list.h"
#include "sounds/mix_samples.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using corvane::XFileSpec;

// The whole file system as drive C:, as the host program has it by default.
void MapDriveC() {
    fm::CurrentSession().drives = {{"C:", "", false}};
}

void ResolveAbsolutePath(benchmark::State& state) {
    MapDriveC();
    XFileSpec spec;
    for (auto _ : state) benchmark::DoNotOptimize(spec.SetFromFileMakerPath("filewin:/C:/usr/bin/env", true));
}
BENCHMARK(ResolveAbsolutePath);

void ResolveRelativePath(benchmark::State& state) {
    MapDriveC();
    XFileSpec base;
    base.SetFromNativePath("C:\\usr\\bin");
    XFileSpec spec;
    for (auto _ : state) benchmark::DoNotOptimize(spec.SetFromFileMakerPath("../bin/./env", &base, false));
}
BENCHMARK(ResolveRelativePath);

void NativePath(benchmark::State& state) {
    MapDriveC();
    XFileSpec spec;
    spec.SetFromNativePath("C:\\usr\\bin\\env");
    for (auto _ : state) benchmark::DoNotOptimize(spec.GetNativePathW());
}
BENCHMARK(NativePath);

// The last key of a list of `state.range(0)` tracks.
void FindInformation(benchmark::State& state) {
    std::string list = "Format: WAVE\r";
    for (int track = 1; track <= state.range(0); ++track) {
        list += "Track " + std::to_string(track) + "\r  Volume: 256\r  Media\r    Sample Description 1\r" +
                "      Sample Rate (Hz): 44100\r";
    }
    const std::string key =
        "Track " + std::to_string(state.range(0)) + "/Media/Sample Description 1/Sample Rate";
    for (auto _ : state) benchmark::DoNotOptimize(corvane::FindInformationKey(list, key));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(list.size()));
}
BENCHMARK(FindInformation)->Arg(1)->Arg(1000);

void ReadTime(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(corvane::ParseTime("001:02:03.456"));
}
BENCHMARK(ReadTime);

void WriteDuration(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(corvane::FormatDuration(123456789, 44100));
}
BENCHMARK(WriteDuration);

// A parameter's way into the plug-in and a result's way out, with `state.range(0)` characters.
void TextThroughTheHost(benchmark::State& state) {
    std::u16string units;
    while (units.size() < static_cast<std::size_t>(state.range(0))) units += u"Größe 12 € ";
    const corvane::Text text = corvane::TextFromBytes(utf::ToUtf8(units));
    for (auto _ : state) {
        const std::string utf8 = corvane::TextAsUtf8(text.get());
        benchmark::DoNotOptimize(corvane::TextFromBytes(utf8));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(units.size()));
}
BENCHMARK(TextThroughTheHost)->Arg(16)->Arg(1 << 16);

void DecimalOfDouble(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(fm::Decimal::FromDouble(0.257));
}
BENCHMARK(DecimalOfDouble);

// Loops over 16-bit samples, beside memcpy of as many: a block that the processor's cache holds, and one that
// it doesn't. Bytes a second are those of the samples that are worked on.
std::vector<std::byte> Samples(const benchmark::State& state) {
    std::vector<std::byte> samples(static_cast<std::size_t>(state.range(0)));
    for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<std::byte>(i * 7919 >> 5);
    return samples;
}

template <typename Work>
void OverSamples(benchmark::State& state, Work work) {
    const std::vector<std::byte> source = Samples(state);
    std::vector<std::byte> samples = source;
    for (auto _ : state) {
        work(source, samples);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void CopySamples(benchmark::State& state) {
    OverSamples(state, [](const auto& source, auto& samples) {
        std::memcpy(samples.data(), source.data(), source.size());
    });
}
void Amplify(benchmark::State& state) {
    OverSamples(state, [](const auto&, auto& samples) {
        corvane::AmplifySamples(samples, std::endian::little, 1.5F, 1.0F);
    });
}
void FindPeak(benchmark::State& state) {
    OverSamples(state, [](const auto&, auto& samples) {
        benchmark::DoNotOptimize(corvane::FindPeak(samples, std::endian::little));
    });
}
void Mix(benchmark::State& state) {
    OverSamples(state, [](const auto& source, auto& samples) {
        corvane::MixSamples(source, samples, qt::Code("sowt"), 2);
    });
}
BENCHMARK(CopySamples)->Arg(256 << 10)->Arg(64 << 20);
BENCHMARK(Amplify)->Arg(256 << 10)->Arg(64 << 20);
BENCHMARK(FindPeak)->Arg(256 << 10)->Arg(64 << 20);
BENCHMARK(Mix)->Arg(256 << 10)->Arg(64 << 20);

} // namespace
