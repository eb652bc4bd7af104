// Tags at the start of a file: what is read can be read out, changed, written and read again.
#include "fuzz/fuzz_target.h"
#include "sounds/tag_names.h"

using corvane::Id3Tag;
using corvane::TagFrame;

void Fuzz(std::string_view input) {
    Id3Tag tag;
    if (!tag.Parse(std::string(input))) return;
    for (const TagFrame& frame : tag.Frames())
        if (const corvane::TagName* name = corvane::NameOfFrame(frame.id)) TagValue(tag, frame, *name);

    const corvane::TagName& name = *corvane::FindTagName("Album Artist");
    tag.Append(FrameIdFor(name, tag.Version()), EncodeTagText("Ωmega", name.content));
    const std::optional<std::string> written = tag.Render(input.size());
    Id3Tag again;
    Require(written && again.Parse(*written) && again.Frames().size() == tag.Frames().size());
    for (std::size_t i = 0; i < tag.Frames().size(); ++i) {
        const TagFrame& a = tag.Frames()[i];
        const TagFrame& b = again.Frames()[i];
        Require(a.id == b.id && a.flags == b.flags && a.content == b.content);
    }
    Require(TagValue(again, again.Frames().back(), name) == "Ωmega");
}
