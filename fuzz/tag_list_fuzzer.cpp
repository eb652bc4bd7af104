// Lists of tags to set: each frame that comes of one has a text.
#include "fuzz/fuzz_target.h"
#include "sounds/set_tags.h"

void Fuzz(std::string_view input) {
    corvane::TagFile file;
    SetTags(file, input);
    for (const corvane::TagFrame& frame : file.Tag().Frames()) {
        const corvane::TagName* name = corvane::NameOfFrame(frame.id);
        Require(name != nullptr);
        // Genres beyond the list have no name, whoever set them.
        Require(name->name == "Genre" || TagValue(file.Tag(), frame, *name));
    }
}
