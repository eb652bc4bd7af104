// Settings of sound exporters, out of blocks that scripts kept: the exporter's own settings stay ones that it
// offers, whatever it is given.
#include "platform/quicktime/movie_exporters/movie_exporter.h"

#include <cstring>

namespace {

qt::MemoryHandle SettingsOf(MovieExportComponent exporter) {
    QTAtomContainer container = nullptr;
    if (MovieExportGetSettingsAsAtomContainer(exporter, &container) != noErr) __builtin_trap();
    return qt::MemoryHandle(container);
}

bool AreEqual(std::span<const std::byte> first, std::span<const std::byte> second) {
    return first.size() == second.size() && std::memcmp(first.data(), second.data(), first.size()) == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Handle block = nullptr;
    if (PtrToHand(data, &block, static_cast<Size>(size)) != noErr) return 0;
    const qt::MemoryHandle given(block);
    for (const OSType format : {qt::Code("WAVE"), qt::Code("caff"), qt::Code("MP3 "), qt::Code("Ogg ")}) {
        ComponentInstance instance = nullptr;
        if (OpenADefaultComponent(qt::kMovieExporter, format, &instance) != noErr) __builtin_trap();
        const qt::OpenComponent exporter(instance);
        if (MovieExportSetSettingsFromAtomContainer(instance, block) != noErr) continue;
        const qt::MemoryHandle taken = SettingsOf(instance);
        if (MovieExportSetSettingsFromAtomContainer(instance, taken.get()) != noErr) __builtin_trap();
        if (!AreEqual(qt::HandleBytes(taken.get()), qt::HandleBytes(SettingsOf(instance).get())))
            __builtin_trap();
    }
    return 0;
}
