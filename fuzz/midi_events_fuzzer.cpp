// MIDI files: their events come in order, and end.
#include "platform/quicktime/movies/midi_events.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const auto source = qt::MemorySource(std::as_bytes(std::span(data, size)));
    const auto file = qt::ReadMidiFile(*source);
    qt::MidiEvents events(file);
    std::int64_t last = 0;
    std::size_t count = 0;
    for (auto event = events.Next(); event.has_value(); event = events.Next()) {
        if (event->frame < last || ++count > size) __builtin_trap();
        last = event->frame;
    }
    if (events.IsGood() && events.Frame() < last) __builtin_trap();
    return 0;
}
