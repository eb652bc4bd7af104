// Parses and evaluates any bytes as a calculation, with no plug-in.
#include "host/engine/engine.h"
#include "platform/text/utf.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view calculation(reinterpret_cast<const char*>(data), size);
    const std::string lower = utf::ToLower(calculation);
    // These wait, or read files of this machine.
    if (lower.find("hostpump") != std::string::npos || lower.find("hostcontainer") != std::string::npos)
        return 0;
    host::Engine engine;
    (void)engine.Evaluate(calculation);
    return 0;
}
