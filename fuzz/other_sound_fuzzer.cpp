#include "fuzz/fuzz_target.h"
#include "fuzz/use_media.h"
#include "platform/quicktime/movies/importers.h"

// Files that only the sound module knows: what it says of one holds while the sound is read.
void Fuzz(std::string_view input) {
    const std::shared_ptr<qt::DataSource> data = qt::MemorySource(std::as_bytes(std::span(input)));
    const qt::DataReference reference = qt::MemoryReference();
    const qt::Imported imported = qt::ImportOther({data, &reference, {}});
    Require((imported.code == noErr) == (imported.movie != nullptr));
    if (imported.movie == nullptr) return;
    qt::MediaRecord& media = *imported.movie->tracks.front()->media;
    Require(media.samples->duration >= 0 && media.time_scale > 0);
    UseMedia(&media);
}
