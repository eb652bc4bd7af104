#include "platform/text/utf.h"
#include "plugin/errors.h"
#include "plugin/functions.h"
#include "plugin/host_data.h"

#include <string>

namespace corvane {
namespace {

constexpr std::size_t kTextLimit = 511;

} // namespace

FM_Error SetLastErrorResult(FM_Data& result) {
    const std::string text = "$" + std::to_string(LastError().GetCode()) + ":" + LastError().GetMessage();
    return SetResultText(result, utf::CutAtCharacter(text, kTextLimit));
}

FM_Error GetLastError(std::int16_t, const FM_ExprEnv&, const FM_DataVect&, FM_Data& result) {
    return SetLastErrorResult(result);
}

} // namespace corvane
