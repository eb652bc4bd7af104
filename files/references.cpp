#include "files/references.h"

#include "files/database_folder.h"
#include "platform/text/utf.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"

#include <optional>

namespace corvane {
namespace {

constexpr std::size_t kContainerLimit = 511;
constexpr std::size_t kLineLimit = 1023;

// The folder that relative lines count from; none for a database that is served over the network.
struct RelativeBase {
    std::int32_t code = 0;
    std::optional<XFileSpec> folder;

    [[nodiscard]] const XFileSpec* get() const { return folder ? &*folder : nullptr; }
};

RelativeBase FindRelativeBase() {
    RelativeBase base;
    XFileSpec database;
    const std::int32_t code = DatabaseFolder(database);
    if (code == kNetworkDatabase) return base;
    base.code = code;
    if (code == 0) {
        database.MoveToParent();
        base.folder = database;
    }
    return base;
}

// Takes the next line off the text: it ends at a carriage return, a line feed, or both in that order, and
// is cut where it grows too long.
std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    const std::string_view line = utf::CutAtCharacter(text.substr(0, end), kLineLimit);
    text.remove_prefix(line.size());
    if (line.size() == end && !text.empty()) text.remove_prefix(text.substr(0, 2) == "\r\n" ? 2 : 1);
    return line;
}

} // namespace

std::int32_t PutFileReferenceResult(FM_Data& result, const XFileSpec& file, std::string_view kind,
                                    std::uint16_t width, std::uint16_t height) {
    const RelativeBase base = FindRelativeBase();
    if (base.code != 0) return base.code;

    PathText relative{kErrorNoSuchVolume, {}};
    if (base.folder) relative = file.GetRelativePath(kind, *base.folder);
    if (relative.code == kErrorNoSuchVolume) {
        relative = {0, std::string(kind) + ":" + file.GetName()};
    } else if (relative.code != 0) {
        return relative.code;
    }

    const PathText absolute = file.GetFileMakerPath(kind);
    if (absolute.code != 0) return absolute.code;
    return SetResultText(result, "size:" + std::to_string(width) + "," + std::to_string(height) + "\r" +
                                     relative.text + "\r" + absolute.text);
}

std::string ReferenceTextOf(const FM_Data& parameter) {
    std::string text = ParameterAsUtf8(&parameter);
    const bool is_text = Host(FM_Data_GetNativeType, &parameter) == kFM_TypeText;
    text.resize(utf::CutAtCharacter(text, is_text ? kLineLimit : kContainerLimit).size());
    return text;
}

std::int32_t ResolveReferenceText(std::string_view text, XFileSpec& file) {
    const RelativeBase base = FindRelativeBase();
    if (base.code != 0) return base.code;
    std::int32_t code = kErrorFileNotFound; // a text without any line names nothing
    while (!text.empty()) {
        code = file.SetFromText(TakeLine(text), base.get());
        if (code == 0) break;
    }
    return code;
}

std::int32_t ResolveFileMakerReference(std::string_view text, XFileSpec& file) {
    const RelativeBase base = FindRelativeBase();
    if (base.code != 0) return base.code;
    return file.SetFromFileMakerPath(text, base.get(), true);
}

} // namespace corvane
