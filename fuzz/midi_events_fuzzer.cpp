// MIDI files: their events come in order, and end.
#include "fuzz/fuzz_target.h"
#include "platform/quicktime/movies/midi_events.h"

void Fuzz(std::string_view input) {
    const auto source = qt::MemorySource(std::as_bytes(std::span(input)));
    const auto file = qt::ReadMidiFile(*source);
    qt::MidiEvents events(file);
    std::int64_t last = 0;
    std::size_t count = 0;
    for (auto event = events.Next(); event.has_value(); event = events.Next()) {
        Require(event->frame >= last && ++count <= input.size());
        last = event->frame;
    }
    Require(!events.IsGood() || events.Frame() >= last);
}
