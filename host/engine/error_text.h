// The texts with which functions of the plug-in tell errors.
#pragma once

#include "platform/fmwrapper/objects.h"

#include <cstdint>
#include <optional>
#include <string>

namespace host {

struct ErrorText {
    std::int32_t code = 0; ///< wider than what a function can answer to the host
    std::string message;   ///< UTF-8
};

/// "$code:message" in its parts; nullopt for anything else.
std::optional<ErrorText> ParseErrorText(const FM_Data& value);

} // namespace host
