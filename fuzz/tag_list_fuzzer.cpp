// Lists of tags to set: each frame that comes of one has a text.
#include "sounds/set_tags.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    corvane::TagFile file;
    SetTags(file, {reinterpret_cast<const char*>(data), size});
    for (const corvane::TagFrame& frame : file.Tag().Frames()) {
        const corvane::TagName* name = corvane::NameOfFrame(frame.id);
        if (name == nullptr) std::abort();
        // Genres beyond the list have no name, whoever set them.
        if (name->name != "Genre" && !TagValue(file.Tag(), frame, *name)) std::abort();
    }
    return 0;
}
