// Sound resources as containers hold them: pasted into a movie, and the sound rendered at its own rate.
#include "platform/quicktime/movies/sound_description.h"
#include "platform/quicktime/movies/sound_renderer.h"
#include "platform/quicktime/movies/sound_resource.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Handle handle = nullptr;
    if (PtrToHand(data, &handle, static_cast<Size>(size)) != noErr) return 0;
    const qt::MemoryHandle resource(handle);
    const qt::OwnedMovie movie(NewMovie(0));
    if (PasteHandleIntoMovie(handle, qt::Code("snd "), movie.get()) != noErr) return 0;
    const qt::MediaRecord& media = *movie->tracks[0]->media;
    if (!qt::LayoutOf(media.samples->descriptions[0]).has_value()) return 0; // needs a decoder
    const qt::PcmLayout layout = {qt::SampleEncoding::kUnsigned8, false, 1,
                                  static_cast<std::uint32_t>(media.time_scale)};
    std::unique_ptr<qt::SoundRenderer> renderer;
    if (qt::SoundRenderer::Open(*movie, nullptr, layout, renderer) != noErr) return 0;
    qt::Bytes block(1U << 16);
    while (renderer->Read(block).frames > 0) {
    }
    return 0;
}
