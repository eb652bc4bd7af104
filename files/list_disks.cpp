#include "files/file_function.h"
#include "files/functions.h"
#include "platform/text/utf.h"
#include "plugin/results.h"

namespace corvane {
namespace {

void List(const FM_DataVect&) {
    SetResultBufferText(utf::ToUtf8(native::ListDisks()));
}

} // namespace

FM_Error ListDisks(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    return RunFileFunction(parameters, 0, result, List);
}

} // namespace corvane
