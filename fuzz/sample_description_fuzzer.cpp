// Sample descriptions of sounds as files have them: every version, their extensions, and what is told of
// them.
#include "platform/quicktime/movies/sound_description.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const auto description = qt::SoundDescriptionFromFile(std::as_bytes(std::span(data, size)));
    if (!description.has_value()) return 0;
    const auto format = qt::ReadSoundFormat(*description);
    if (format.has_value()) qt::ReadStreamSetup(qt::FindExtension(format->extensions, qt::Code("esds")));
    qt::StatedBitRate(*description);
    qt::LayoutOf(*description);
    qt::SoundDescriptionToFile(*description);

    Handle block = nullptr;
    if (PtrToHand(description->data(), &block, static_cast<Size>(description->size())) != noErr) return 0;
    const qt::MemoryHandle owned(block);
    const qt::MemoryHandle value(NewHandle(0));
    for (const OSType property : {qt::Code("asbd"), qt::Code("kuki"), qt::Code("clay")})
        QTSoundDescriptionGetProperty(block, qt::Code("sdes"), property, value.get());
    GetSoundDescriptionExtension(block, value.get(), qt::Code("wave"));
    const qt::MemoryHandle converted(NewHandle(0));
    if (QTSoundDescriptionConvertToV1(block, converted.get()) != noErr) return 0;
    if (!qt::ReadSoundFormat(qt::HandleBytes(converted.get())).has_value()) __builtin_trap();
    return 0;
}
