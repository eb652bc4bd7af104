// Sample descriptions of sounds as files have them: every version, their extensions, and what is told of
// them.
#include "fuzz/fuzz_target.h"
#include "platform/quicktime/movies/sound_description.h"

void Fuzz(std::string_view input) {
    const auto description = qt::SoundDescriptionFromFile(std::as_bytes(std::span(input)));
    if (!description.has_value()) return;
    const auto format = qt::ReadSoundFormat(*description);
    if (format.has_value()) qt::ReadStreamSetup(qt::FindExtension(format->extensions, qt::Code("esds")));
    qt::StatedBitRate(*description);
    qt::LayoutOf(*description);
    qt::SoundDescriptionToFile(*description);

    Handle block = nullptr;
    if (PtrToHand(description->data(), &block, static_cast<Size>(description->size())) != noErr) return;
    const qt::MemoryHandle owned(block);
    const qt::MemoryHandle value(NewHandle(0));
    for (const OSType property : {qt::Code("asbd"), qt::Code("kuki"), qt::Code("clay")})
        QTSoundDescriptionGetProperty(block, qt::Code("sdes"), property, value.get());
    GetSoundDescriptionExtension(block, value.get(), qt::Code("wave"));
    const qt::MemoryHandle converted(NewHandle(0));
    if (QTSoundDescriptionConvertToV1(block, converted.get()) != noErr) return;
    Require(qt::ReadSoundFormat(qt::HandleBytes(converted.get())).has_value());
}
