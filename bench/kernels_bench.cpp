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

// The result counts as used: the compiler must not drop the work that makes it.
template <typename Work>
void Repeat(benchmark::State& state, Work work) {
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(work());
}

// The whole file system as drive C:, as the host program has it by default.
void MapDriveC() {
    fm::CurrentSession().drives = {{"C:", "", false}};
}

void ResolveAbsolutePath(benchmark::State& state) {
    MapDriveC();
    XFileSpec spec;
    Repeat(state, [&] { return spec.SetFromFileMakerPath("filewin:/C:/usr/bin/env", true); });
}
BENCHMARK(ResolveAbsolutePath);

void ResolveRelativePath(benchmark::State& state) {
    MapDriveC();
    XFileSpec base;
    base.SetFromNativePath(R"(C:\usr\bin)");
    XFileSpec spec;
    Repeat(state, [&] { return spec.SetFromFileMakerPath("../bin/./env", &base, false); });
}
BENCHMARK(ResolveRelativePath);

void NativePath(benchmark::State& state) {
    MapDriveC();
    XFileSpec spec;
    spec.SetFromNativePath(R"(C:\usr\bin\env)");
    Repeat(state, [&] { return spec.GetNativePathW(); });
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
    Repeat(state, [&] { return corvane::FindInformationKey(list, key); });
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(list.size()));
}
BENCHMARK(FindInformation)->Arg(1)->Arg(1000);

void ReadTime(benchmark::State& state) {
    Repeat(state, [] { return corvane::ParseTime("001:02:03.456"); });
}
BENCHMARK(ReadTime);

void WriteDuration(benchmark::State& state) {
    Repeat(state, [] { return corvane::FormatDuration(123456789, 44100); });
}
BENCHMARK(WriteDuration);

// A parameter's way into the plug-in and a result's way out, with `state.range(0)` characters.
void TextThroughTheHost(benchmark::State& state) {
    std::u16string units;
    while (units.size() < static_cast<std::size_t>(state.range(0))) units += u"Größe 12 € ";
    const corvane::Text text = corvane::TextFromBytes(utf::ToUtf8(units));
    Repeat(state, [&] { return corvane::TextFromBytes(corvane::TextAsUtf8(text.get())); });
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(units.size()));
}
BENCHMARK(TextThroughTheHost)->Arg(16)->Arg(1 << 16);

void DecimalOfDouble(benchmark::State& state) {
    Repeat(state, [] { return fm::Decimal::FromDouble(0.257); });
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
    for ([[maybe_unused]] auto _ : state) {
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
