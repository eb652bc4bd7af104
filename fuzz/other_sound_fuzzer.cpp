#include "fuzz/fuzz_target.h"
#include "fuzz/use_media.h"

// Files that only the sound module knows: what it says of one holds while the sound is read.
void Fuzz(std::string_view input) {
    const qt::OwnedMovie movie = ImportBytes(qt::ImportOther, input);
    if (movie != nullptr) UseMedia(movie->tracks.front()->media.get());
}
