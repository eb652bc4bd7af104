#include "sounds/generate_tone.h"

#include "platform/quicktime/movies/sound_description.h"
#include "sounds/note_frequency.h"

#include <array>
#include <utility>

namespace corvane {

std::int32_t GenerateTone(Media media, const ToneRequest& request, double* phase) {
    const GeneratedTone tone = GenerateToneBlock(request, phase != nullptr ? *phase : 0);
    if (tone.code != 0) return tone.code;
    const ToneBlock& block = tone.block;
    SoundDescription fields;
    fields.dataFormat = block.format;
    fields.numChannels = block.channels;
    fields.sampleSize = block.sample_bits;
    fields.sampleRate = request.sample_rate;
    Handle description = nullptr;
    if (const OSErr code = PtrToHand(&fields, &description, sizeof fields); code != noErr) return code;
    const qt::MemoryHandle owned(description);
    const OSErr code =
        AddMediaSample(media, block.samples, 1, description, static_cast<std::int64_t>(block.frames));
    if (code == noErr && phase != nullptr) *phase = block.phase;
    return code;
}

std::int32_t AddTones(Movie movie, std::span<const ToneRequest> tones) {
    const auto scale = static_cast<TimeScale>((std::uint64_t{tones.front().sample_rate} + 0x8000) >> 16);
    const Track track = NewMovieTrack(movie, 0, 0, kFullVolume);
    const Media media = NewTrackMedia(track, qt::Code("soun"), scale, nullptr, qt::kHandleDataHandler);
    if (media == nullptr) return GetMoviesError();
    std::int32_t code = BeginMediaEdits(media);
    double phase = 0;
    for (const ToneRequest& tone : tones)
        if (code == 0) code = GenerateTone(media, tone, &phase);
    if (code == 0) code = InsertMediaIntoTrack(track, 0, 0, GetMediaDuration(media), kNormalRate);
    return code == 0 ? EndMediaEdits(media) : code;
}

std::int32_t MakeChime(Movie movie, Fixed note_duration, std::uint32_t sample_rate, std::uint16_t layout,
                       bool descending) {
    constexpr Fixed kSilence = 256;
    constexpr auto kSilent = static_cast<std::uint16_t>(~kToneWaveMask);
    std::array<std::string_view, 3> notes = {"c4", "e4", "g4"};
    if (descending) std::swap(notes.front(), notes.back());
    ToneRequest tone;
    tone.sample_rate = sample_rate;
    std::array<ToneRequest, 4> tones;
    tones.fill(tone);
    tones[0].duration = kSilence;
    tones[0].layout = layout & kSilent;
    for (std::size_t i = 0; i < notes.size(); ++i) {
        tones[i + 1].duration = note_duration;
        tones[i + 1].layout = layout;
        tones[i + 1].frequency = *NoteFrequency(notes[i]);
    }
    return AddTones(movie, tones);
}

} // namespace corvane
