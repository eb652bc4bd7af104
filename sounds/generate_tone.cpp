#include "sounds/generate_tone.h"

#include "platform/quicktime/movies/sound_description.h"

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

} // namespace corvane
