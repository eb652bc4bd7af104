#include "host/commands/commands.h"
#include "host/commands/json.h"
#include "host/commands/output.h"
#include "platform/text/utf.h"

namespace host {

int About(Session& session, const CommandLine& line) {
    PluginLibrary& plugin = session.Plugin();
    PluginFacts facts = {.name = plugin.String(kFM_StringName),
                         .description = plugin.String(kFM_StringDescription),
                         .options = plugin.String(kFM_StringOptions),
                         .answer = plugin.Answer(),
                         .version = {}};
    if (session.GetEngine().Find("media_version") != nullptr)
        facts.version = utf::ToUtf8(session.Evaluate(R"(Media_Version("short"))").value.AsText().units);

    Output output;
    if (line.json) {
        output.Buffer() = JsonOf(facts) + '\n';
    } else {
        output.Buffer() = "name         " + facts.name + "\ndescription  " + facts.description +
                          "\noptions      " + facts.options + "\nanswer       " +
                          std::to_string(facts.answer) + "\nversion      " + facts.version + '\n';
    }
    output.Flush();
    return output.Good() ? 0 : kUsageError;
}

} // namespace host
