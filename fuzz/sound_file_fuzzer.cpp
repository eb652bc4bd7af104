#include "fuzz/fuzz_target.h"
#include "fuzz/use_media.h"

/// libsndfile 1.2.0 forgets a block of some KB when it gives up on a damaged Ogg file.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer looks for this name
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:vorbis_info_init\n";
}

// Sound files: whatever an importer makes of one, its samples come in order and lie in the file.
void Fuzz(std::string_view input) {
    for (const auto importer : {qt::ImportSoundFile, qt::ImportMpegAudio}) {
        const qt::OwnedMovie movie = ImportBytes(importer, input);
        if (movie == nullptr) continue;
        qt::MediaRecord& media = *movie->tracks.front()->media;
        if (media.samples->LoadRuns() != noErr) continue;
        TimeValue end = 0;
        for (const qt::SampleRun& run : media.samples->runs) {
            Require(run.start >= end && run.offset + run.count * run.size <= input.size());
            end = run.End();
        }
        UseMedia(&media);
    }
}
