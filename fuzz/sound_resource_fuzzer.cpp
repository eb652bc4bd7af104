// Sound resources as containers hold them: pasted into a movie, and the sound rendered at its own rate.
#include "fuzz/fuzz_target.h"
#include "platform/quicktime/movies/sound_description.h"
#include "platform/quicktime/movies/sound_renderer.h"
#include "platform/quicktime/movies/sound_resource.h"

void Fuzz(std::string_view input) {
    Handle handle = nullptr;
    if (PtrToHand(input.data(), &handle, static_cast<Size>(input.size())) != noErr) return;
    const qt::MemoryHandle resource(handle);
    const qt::OwnedMovie movie(NewMovie(0));
    if (PasteHandleIntoMovie(handle, qt::Code("snd "), movie.get()) != noErr) return;
    const qt::MediaRecord& media = *movie->tracks[0]->media;
    if (!qt::LayoutOf(media.samples->descriptions[0]).has_value()) return; // needs a decoder
    const qt::PcmLayout layout = {qt::SampleEncoding::kUnsigned8, false, 1,
                                  static_cast<std::uint32_t>(media.time_scale)};
    std::unique_ptr<qt::SoundRenderer> renderer;
    if (qt::SoundRenderer::Open(*movie, nullptr, layout, renderer) != noErr) return;
    qt::Bytes block(1U << 16);
    while (renderer->Read(block).frames > 0) {
    }
}
