#include "host/manual/manual.h"

#include <array>

namespace host {
namespace {

constexpr std::string_view kNoErrors = "none";
constexpr std::string_view kInputErrors = "-50   real windows are shown (see --ui)";

constexpr auto kPages = std::to_array<ManualPage>({
    {"HostContainer", "A container with streams from files, as if a person had inserted them.",
     R"(type   four bytes, such as JPEG or FNAM
file   Unix path of the file with the stream's bytes)",
     "A container; without parameters an empty one.",
     R"(-43   a file cannot be read
-50   a type has not four bytes)",
     R"(HostContainer ( "JPEG" ; "/home/ann/a.jpg" ))"},
    {"HostReference", "A container without streams that refers to a file.",
     "text   reference text, lines separated by ¶", "A container.", kNoErrors,
     R"(HostReference ( "size:320,240¶movie:a.mov¶moviewin:/C:/films/a.mov" ))"},
    {"HostStream", "The bytes of a stream.",
     R"(container   the container
type        four bytes; the first stream of that type counts)",
     "Text: two hexadecimal digits a byte, lower case; empty when the container has no such stream.",
     R"(-50   the type has not four bytes
-108  more than 1 GiB of text)",
     R"(HostStream ( $picture ; "SIZE" ))"},
    {"HostPump", "Lets the message queue run, so that timers fire.", "seconds   from 0 to 86400", "Empty.",
     kNoErrors, "HostPump ( 0.5 )"},
    {"HostClickAfter", "Without windows: a mouse button goes down later.", "seconds   from now, up to 86400",
     "Empty.", kInputErrors, "HostClickAfter ( 1 )"},
    {"HostKeyAfter", "Without windows: a key goes down later.",
     R"(seconds   from now, up to 86400
key       its name, such as "escape")",
     "Empty.", "-50   the key has no name, or real windows are shown (see --ui)",
     R"(HostKeyAfter ( 1 ; "escape" ))"},
    {"HostWindow", "Without windows: where the front document window is.",
     "left, top, right, bottom   in pixels of the screen", "Empty.", kInputErrors,
     "HostWindow ( 0 ; 0 ; 640 ; 480 )"},
    {"HostPointer", "Without windows: where the pointer is.", "x, y   in pixels of the screen", "Empty.",
     kInputErrors, "HostPointer ( 100 ; 80 )"},
});

} // namespace

const ManualGroup kHostManual = {"Helpers of this host", {}, kPages};

} // namespace host
