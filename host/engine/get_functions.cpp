#include "host/engine/engine.h"
#include "host/engine/functions.h"
#include "platform/fmwrapper/session.h"
#include "platform/text/utf.h"

#include <cstdlib>
#include <ctime>

namespace host::functions {
namespace {

FM_Data Utf8Text(std::string_view text) {
    return TextOf(utf::ToUtf16(text));
}

} // namespace

FM_Data GetFilePath(const Arguments& arguments) {
    return Utf8Text(arguments.GetEvaluation().GetEngine().database);
}

FM_Data GetFileName(const Arguments& arguments) {
    std::string_view name = arguments.GetEvaluation().GetEngine().database;
    name.remove_prefix(name.find_last_of("/:") + 1); // npos + 1 is 0
    const auto extension = name.rfind('.');
    return Utf8Text(extension == 0 ? name : name.substr(0, extension));
}

FM_Data GetApplicationVersion(const Arguments& arguments) {
    return Utf8Text("Pro " + arguments.GetEvaluation().GetEngine().application_version);
}

// Windows, in the application's numbering.
FM_Data GetSystemPlatform(const Arguments&) {
    return NumberOf(-2);
}

// Local time, "2024-01-31 18:05:09".
FM_Data GetCurrentTimestamp(const Arguments&) {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    char text[32];
    if (localtime_r(&now, &local) == nullptr) return {};
    return Utf8Text({text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local)});
}

// Host path text with a "/" at its end; empty when no drive covers the folder.
FM_Data GetTemporaryPath(const Arguments&) {
    const char* folder = std::getenv("TMPDIR");
    std::string path = folder != nullptr && folder[0] == '/' ? folder : "/tmp";
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    const auto host_path = fm::HostPath(fm::CurrentSession().drives, path);
    return host_path ? Utf8Text(*host_path + "/") : FM_Data();
}

} // namespace host::functions
