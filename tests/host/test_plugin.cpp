// A small plug-in that shows what the host does with one. It refuses interface versions below 50 (-1) and
// the host version "refused" (-2).
#include "platform/fmwrapper/call_block.h"
#include "platform/fmwrapper/session.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

int g_idle_calls = 0;
int g_dispatches = 0;

FM_Error Echo(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    FM_Status status = 0;
    const FM_Data* value = FM_DataVect_At(&parameters, 0, &status);
    if (FM_Data_GetNativeType(value, &status) == kFM_TypeContainer) {
        FM_Data_SetBinaryData(&result, FM_Data_GetBinaryData(value, &status), true, &status);
        return 0;
    }
    return FM_Data_SetAsText(&result, FM_Data_GetAsText(value, &status), FM_Data_GetLocale(&result, &status),
                             kFM_TypeText, &status);
}

// Leaves its second parameter in the result and answers its first.
FM_Error Answer(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    FM_Status status = 0;
    if (FM_DataVect_Size(&parameters, &status) > 1)
        FM_Data_SetAsText(&result, FM_DataVect_AtAsText(&parameters, 1, &status),
                          FM_Data_GetLocale(&result, &status), kFM_TypeText, &status);
    return static_cast<FM_Error>(FM_FixPt_AsLong(FM_DataVect_AtAsNumber(&parameters, 0, &status), &status));
}

FM_Error Evaluate(std::int16_t, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                  FM_Data& result) {
    FM_Status status = 0;
    return FM_ExprEnv_Evaluate(&environment, FM_DataVect_AtAsText(&parameters, 0, &status), &result, &status);
}

// Answers how often messages were dispatched while the plug-in had its idle calls.
FM_Error Turns(std::int16_t, const FM_ExprEnv&, const FM_DataVect&, FM_Data&) {
    return static_cast<FM_Error>(g_idle_calls > 0 ? g_dispatches : -1);
}

// Ends the process on the spot, as a fault in a plug-in does.
FM_Error Abort(std::int16_t, const FM_ExprEnv&, const FM_DataVect&, FM_Data&) {
    std::abort();
}

void Register(std::int16_t id, const char* name, const char* prototype, std::int16_t minimum,
              std::int16_t maximum, FM_ExternalFunction handler) {
    FM_Status status = 0;
    FM_QuadChar* plugin = FM_QuadChar_Constructor2('T', 'E', 'S', 'T', &status);
    FM_Text* name_text = FM_Text_Constructor1(&status);
    FM_Text* prototype_text = FM_Text_Constructor1(&status);
    FM_Text_Assign(name_text, name, kFM_EncodingUTF8, &status);
    FM_Text_Assign(prototype_text, prototype, kFM_EncodingUTF8, &status);
    FM_ExprEnv_RegisterExternalFunction(plugin, id, name_text, prototype_text, minimum, maximum, 0xFF01,
                                        handler, &status);
    FM_Text_Delete(prototype_text, &status);
    FM_Text_Delete(name_text, &status);
    FM_QuadChar_Delete(plugin, &status);
}

std::intptr_t StartUp(const FM_CallBlock& block) {
    if (block.interface_version < 50) return -1;
    if (fm::CurrentSession().application_version == "refused") return -2;
    fm::CurrentSession().dispatch_messages = [] { ++g_dispatches; };
    Register(1, "Test_Echo", "Test_Echo( value )", 1, 1, Echo);
    Register(2, "Test_Answer", "Test_Answer( code {; text} )", 1, 2, Answer);
    Register(3, "Test_Evaluate", "Test_Evaluate( text )", 1, 1, Evaluate);
    Register(4, "Test_Turns", "Test_Turns", 0, 0, Turns);
    Register(5, "TEST_ECHO", "Test_Echo", 0, 0, Turns);
    Register(6, "Test_Many", "Test_Many( a ; b {; c…} )", 2, -1, Echo);
    Register(7, "Test_Abort", "Test_Abort", 0, 0, Abort);
    return block.interface_version;
}

} // namespace

extern "C" __attribute__((visibility("default"))) void FMExternCallProc(FM_CallBlock* block) {
    if (block->selector == kFM_CallStartUp) {
        block->result = StartUp(*block);
    } else if (block->selector == kFM_CallIdle) {
        ++g_idle_calls;
    } else if (block->selector == kFM_CallGetString) {
        const std::u16string text = block->parameter1 == kFM_StringName ? u"Tést" : u"-";
        std::memcpy(reinterpret_cast<char16_t*>(block->result), text.c_str(),
                    (text.size() + 1) * sizeof(char16_t));
    }
}
