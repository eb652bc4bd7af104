#include "images/image_metadata.h"
#include "plugin/errors.h"
#include "plugin/functions.h"
#include "plugin/host_data.h"
#include "plugin/parameters.h"
#include "plugin/text_escapes.h"
#include "sounds/mp3_parameter.h"
#include "sounds/set_tags.h"

#include <algorithm>
#include <optional>
#include <string>

namespace corvane {
namespace {

constexpr std::string_view kComment = "Comment";

std::string WithCarriageReturns(std::string_view text) {
    std::string lines;
    lines.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        lines += text[i] == '\n' ? '\r' : text[i];
    }
    return lines;
}

std::optional<std::string> NamedTag(const Id3Tag& tag, std::string_view name) {
    const TagName* row = FindTagName(name);
    if (row == nullptr) return std::nullopt;
    const auto frame = std::ranges::find_if(
        tag.Frames(), [&](const TagFrame& candidate) { return IsFrameOf(*row, candidate.id); });
    if (frame == tag.Frames().end()) return std::nullopt;
    std::optional<std::string> value = TagValue(tag, *frame, *row);
    return value && row->name == kComment ? WithCarriageReturns(*value) : value;
}

std::optional<std::string> TagList(const Id3Tag& tag) {
    std::string list;
    for (const TagFrame& frame : tag.Frames()) {
        const TagName* row = NameOfFrame(frame.id);
        if (row == nullptr) continue;
        const std::optional<std::string> value = TagValue(tag, frame, *row);
        if (!value) continue;
        list.append(row->name).append(": ");
        list.append(row->name == kComment ? EscapeLineBreaks(*value) : *value).append("\r");
    }
    if (list.empty()) return std::nullopt;
    return list;
}

FM_Error TagsOfFile(const std::u16string& path, const FM_DataVect& parameters, FM_Data& result,
                    CVSError& error) {
    Read<std::string> name;
    if (Host(FM_DataVect_Size, &parameters) == 2) name = ReadTextParameter(parameters, 1);
    if (name.code != 0) return error.Fail(name.code, "Could not get parameter #2 as text.");
    TagFile file;
    std::optional<std::string> text;
    if (file.Link(path) == 0)
        text = name.value.empty() ? TagList(file.Tag()) : NamedTag(file.Tag(), name.value);
    if (!text && name.value.empty())
        return error.Fail(kNotAnMp3, "The specified file does not contain any MP3 tags.");
    if (!text) return error.Fail(kErrorUnknownTag, "The specified tag was not found.");
    error.SetCode(SetResultText(result, *text));
    return error.HostCode();
}

} // namespace

FM_Error GetMetadata(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_GetMetadata");
    ClearResult(result);
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    if (count < 1 || count > 2)
        return error.Fail(kErrorWrongParameter, "This function requires 1 or 2 parameters.");
    const Mp3File file = Mp3FileOf(parameters, 0);
    if (file.code == 0) return TagsOfFile(file.path, parameters, result, error);
    error.Reset();
    return ImageMetadata(*Host(FM_DataVect_At, &parameters, 0), result);
}

} // namespace corvane
