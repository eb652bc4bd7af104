#include "plugin/functions.h"
#include "plugin/host_data.h"
#include "plugin/string_table.h"

#include <string_view>

namespace corvane {
namespace {

bool IsText(const FM_Text* text, std::string_view literal) {
    return Host(FM_Text_operatorEQ, text, TextFromBytes(literal, kFM_EncodingNative).get());
}

Text TextOfString(UINT id) {
    Text text = NewText();
    Host(FM_Text_AssignUnicode, text.get(), LoadedString(id).c_str());
    return text;
}

void Append(const Text& text, const Text& other) {
    Host(FM_Text_AppendText, text.get(), other.get(), 0, kFM_ToEnd);
}

Text TextOfFormat(const FM_Text* format) {
    if (IsText(format, "")) return TextOfString(kStringVersion);
    if (IsText(format, "long")) {
        Text text = TextOfString(kStringName);
        Append(text, TextFromBytes(" ", kFM_EncodingNative));
        Append(text, TextOfString(kStringVersion));
        return text;
    }
    if (IsText(format, "platform")) return TextFromBytes("Windows", kFM_EncodingNative);
    if (IsText(format, "short")) return TextOfString(kStringVersion);
    return NewText();
}

} // namespace

FM_Error Version(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    const bool has_format = Host(FM_DataVect_Size, &parameters) == 1;
    const Text text =
        has_format ? TextOfFormat(Host(FM_DataVect_AtAsText, &parameters, 0)) : TextOfString(kStringVersion);
    return SetResultText(result, text.get());
}

} // namespace corvane
