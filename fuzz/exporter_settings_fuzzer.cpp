// Settings of sound exporters, out of blocks that scripts kept: the exporter's own settings stay ones that it
// offers, whatever it is given.
#include "fuzz/fuzz_target.h"
#include "platform/quicktime/movie_exporters/movie_exporter.h"

#include <algorithm>

namespace {

qt::MemoryHandle SettingsOf(MovieExportComponent exporter) {
    QTAtomContainer container = nullptr;
    Require(MovieExportGetSettingsAsAtomContainer(exporter, &container) == noErr);
    return qt::MemoryHandle(container);
}

} // namespace

void Fuzz(std::string_view input) {
    Handle block = nullptr;
    if (PtrToHand(input.data(), &block, static_cast<Size>(input.size())) != noErr) return;
    const qt::MemoryHandle given(block);
    for (const OSType format : {qt::Code("WAVE"), qt::Code("caff"), qt::Code("MP3 "), qt::Code("Ogg ")}) {
        ComponentInstance instance = nullptr;
        Require(OpenADefaultComponent(qt::kMovieExporter, format, &instance) == noErr);
        const qt::OpenComponent exporter(instance);
        if (MovieExportSetSettingsFromAtomContainer(instance, block) != noErr) continue;
        const qt::MemoryHandle taken = SettingsOf(instance);
        Require(MovieExportSetSettingsFromAtomContainer(instance, taken.get()) == noErr);
        Require(
            std::ranges::equal(qt::HandleBytes(taken.get()), qt::HandleBytes(SettingsOf(instance).get())));
    }
}
