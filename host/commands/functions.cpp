#include "host/commands/commands.h"
#include "host/commands/json.h"
#include "host/commands/output.h"
#include "platform/text/utf.h"

#include <cstdio>

namespace host {
namespace {

// Fields separated by tabs; flags in hexadecimal.
std::string PlainLine(const fm::ExternalFunction& function) {
    char flags[16];
    std::snprintf(flags, sizeof flags, "0x%04X", function.flags);
    return std::to_string(function.id) + '\t' + utf::ToUtf8(function.name) + '\t' +
           utf::ToUtf8(function.prototype) + '\t' + std::to_string(function.minimum) + '\t' +
           std::to_string(function.maximum) + '\t' + flags;
}

} // namespace

// As JSON it is one array, an element a line.
int ListFunctions(Session& session, const CommandLine& line) {
    Output output;
    std::string& text = output.Buffer();
    if (line.json) text += '[';
    bool first = true;
    for (const auto& registration : session.GetEngine().Registrations()) {
        if (line.json) text += first ? "\n" : ",\n";
        first = false;
        text += line.json ? JsonOf(registration->function) : PlainLine(registration->function) + '\n';
    }
    if (line.json) text += "\n]\n";
    output.Flush();
    return output.Good() ? 0 : kUsageError;
}

} // namespace host
