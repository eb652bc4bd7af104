#include "plugin/host_data.h"

#include "plugin/call_block.h"

#include <limits>

namespace corvane {
namespace {

constexpr std::int32_t kFilePathBufferSize = 4096;

} // namespace

Text NewText() {
    return Text(Host(FM_Text_Constructor1));
}

QuadChar NewQuadChar(std::uint32_t code) {
    QuadChar quad(Host(FM_QuadChar_Constructor1));
    Host(FM_QuadChar_SetMacType, quad.get(), code);
    return quad;
}

Text TextFromBytes(std::string_view bytes, FM_Encoding encoding) {
    Text text = NewText();
    Host(FM_Text_AssignWithLength, text.get(), bytes.data(), static_cast<std::int32_t>(bytes.size()),
         encoding);
    return text;
}

std::string TextAsUtf8(const FM_Text* text) {
    // Four bytes a unit hold any text uncut, up to what the host can be asked for.
    const std::int32_t units = Host(FM_Text_GetSize, text);
    if (units > (std::numeric_limits<std::int32_t>::max() - 1) / 4) throw std::bad_alloc();
    std::string bytes(static_cast<std::size_t>(units) * 4 + 1, '\0');
    Host(FM_Text_GetBytes, text, bytes.data(), static_cast<std::int32_t>(bytes.size()), 0, kFM_ToEnd,
         kFM_EncodingUTF8);
    bytes.resize(std::char_traits<char>::length(bytes.c_str()));
    return bytes;
}

std::string ParameterAsUtf8(const FM_Data* data) {
    return TextAsUtf8(Host(FM_Data_GetAsText, data));
}

std::u16string ParameterAsUtf16(const FM_Data* data) {
    const FM_Text* text = Host(FM_Data_GetAsText, data);
    std::u16string units(static_cast<std::size_t>(Host(FM_Text_GetSize, text)), u'\0');
    Host(FM_Text_GetUnicode, text, units.data(), 0, kFM_ToEnd);
    return units;
}

FM_Error SetResultText(FM_Data& result, const FM_Text* text) {
    const Locale english(Host(FM_Locale_Constructor1, kFM_LocaleEnglish));
    return Host(FM_Data_SetAsText, &result, text, english.get(), kFM_TypeText);
}

FM_Error SetResultText(FM_Data& result, std::string_view utf8) {
    return SetResultText(result, TextFromBytes(utf8).get());
}

FM_Error SetResultNumber(FM_Data& result, double value) {
    const FixPt number(Host(FM_FixPt_Constructor1));
    Host(FM_FixPt_AssignDouble, number.get(), value);
    return Host(FM_Data_SetAsNumber, &result, number.get(), kFM_TypeNumber);
}

void ClearResult(FM_Data& result) {
    SetResultText(result, NewText().get());
}

std::optional<std::string> EvaluateFilePath() {
    const ExprEnv environment(Host(FM_ExprEnv_Constructor1));
    CurrentCallBlock().current_environment(environment.get());
    const Data path(Host(FM_Data_Constructor1));
    const Text expression = TextFromBytes("Get(FilePath)", kFM_EncodingNative);
    if (Host(FM_ExprEnv_Evaluate, environment.get(), expression.get(), path.get()) != kFM_ErrorNone)
        return std::nullopt;
    std::string bytes(kFilePathBufferSize, '\0');
    Host(FM_Text_GetBytes, Host(FM_Data_GetAsText, path.get()), bytes.data(), kFilePathBufferSize, 0,
         kFM_ToEnd, kFM_EncodingUTF8);
    bytes.resize(std::char_traits<char>::length(bytes.c_str()));
    return bytes;
}

} // namespace corvane
