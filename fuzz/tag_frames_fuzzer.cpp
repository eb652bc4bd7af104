// Tags at the start of a file: what is read can be read out, changed, written and read again.
#include "sounds/tag_names.h"

#include <cstdlib>

using corvane::Id3Tag;
using corvane::TagFrame;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    Id3Tag tag;
    if (!tag.Parse(bytes)) return 0;
    for (const TagFrame& frame : tag.Frames())
        if (const corvane::TagName* name = corvane::NameOfFrame(frame.id)) TagValue(tag, frame, *name);

    const corvane::TagName& name = *corvane::FindTagName("Album Artist");
    tag.Append(FrameIdFor(name, tag.Version()), EncodeTagText("Ωmega", name.content));
    const std::optional<std::string> written = tag.Render(size);
    Id3Tag again;
    if (!written || !again.Parse(*written) || again.Frames().size() != tag.Frames().size()) std::abort();
    for (std::size_t i = 0; i < tag.Frames().size(); ++i) {
        const TagFrame& a = tag.Frames()[i];
        const TagFrame& b = again.Frames()[i];
        if (a.id != b.id || a.flags != b.flags || a.content != b.content) std::abort();
    }
    if (TagValue(again, again.Frames().back(), name) != "Ωmega") std::abort();
    return 0;
}
