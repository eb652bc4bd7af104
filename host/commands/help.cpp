#include "host/commands/commands.h"
#include "host/commands/output.h"
#include "host/engine/builtin.h"
#include "host/manual/manual.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <set>

namespace host {
namespace {

struct GroupTitle {
    BuiltinGroup group;
    std::string_view title;
};

constexpr auto kBuiltinGroups = std::to_array<GroupTitle>({{BuiltinGroup::kLogic, "Logic"},
                                                           {BuiltinGroup::kText, "Text"},
                                                           {BuiltinGroup::kNumber, "Numbers"},
                                                           {BuiltinGroup::kGet, "The host's state"},
                                                           {BuiltinGroup::kHost, "Helpers of this host"}});

void AppendTitle(std::string& text, std::string_view title) {
    if (!text.empty()) text += '\n';
    text += title;
    text += '\n';
}

void AppendPrototype(std::string& text, const fm::ExternalFunction& function) {
    text += "  " + utf::ToUtf8(function.prototype) + '\n';
}

// A heading, and the text below it indented.
void AppendSection(std::string& text, std::string_view heading, std::string_view body) {
    AppendTitle(text, heading);
    while (!body.empty()) {
        const std::string_view line = body.substr(0, body.find('\n'));
        body.remove_prefix(std::min(line.size() + 1, body.size()));
        text += "  ";
        text += line;
        text += '\n';
    }
}

std::string AllFunctions(const Engine& engine) {
    std::string text;
    std::set<const fm::ExternalFunction*> listed;
    for (const ManualGroup* group : PluginManual()) {
        AppendTitle(text, group->title);
        for (const std::string_view name : group->names) {
            const fm::ExternalFunction* function = engine.Find(utf::ToLower(name));
            if (function == nullptr) continue;
            AppendPrototype(text, *function);
            listed.insert(function);
        }
    }
    std::string others;
    for (const auto& registration : engine.Registrations())
        if (engine.Find(registration->key) == &registration->function &&
            !listed.contains(&registration->function))
            AppendPrototype(others, registration->function);
    if (!others.empty()) {
        AppendTitle(text, "Other functions of the plug-in");
        text += others;
    }
    for (const GroupTitle& group : kBuiltinGroups) {
        AppendTitle(text, group.title);
        for (const Builtin& builtin : Builtins())
            if (builtin.group == group.group) text += "  " + std::string(builtin.prototype) + '\n';
    }
    return text;
}

std::string CountText(int minimum, int maximum) {
    if (maximum < 0) return std::to_string(minimum) + " or more";
    return std::to_string(minimum) + (minimum == maximum ? "" : " to " + std::to_string(maximum));
}

void AppendPage(std::string& text, const ManualPage& page) {
    text += '\n';
    text += page.summary;
    text += '\n';
    AppendSection(text, "Parameters", page.parameters);
    AppendSection(text, "Result", page.result);
    AppendSection(text, "Errors", page.errors);
    AppendSection(text, "Example", page.example);
    if (!page.output.empty()) AppendSection(text, "Prints", page.output);
}

// What is shown of a function: its prototype, then its page, or the counts alone.
std::string Manual(std::string_view prototype, std::string_view name, int minimum, int maximum) {
    std::string text = std::string(prototype) + '\n';
    if (const ManualPage* page = FindPage(name)) {
        AppendPage(text, *page);
    } else {
        AppendSection(text, "Parameters", CountText(minimum, maximum));
    }
    return text;
}

// Empty when there is no such function. Get functions are asked for by the name of their value.
std::string FunctionManual(const Engine& engine, const std::string& name) {
    const std::string key = utf::ToLower(name);
    const Builtin* builtin = FindBuiltin(key);
    if (builtin == nullptr) builtin = FindBuiltin("get(" + key + ")");
    if (builtin != nullptr)
        return Manual(builtin->prototype, name, static_cast<int>(builtin->minimum), builtin->maximum);
    const fm::ExternalFunction* function = engine.Find(key);
    if (function == nullptr) return {};
    return Manual(utf::ToUtf8(function->prototype), name, function->minimum, function->maximum);
}

} // namespace

int Help(Session& session, const CommandLine& line) {
    Output output;
    const Engine& engine = session.GetEngine();
    output.Buffer() =
        line.arguments.empty() ? AllFunctions(engine) : FunctionManual(engine, line.arguments.front());
    if (output.Buffer().empty()) {
        std::fprintf(stderr, "corvane: there is no function \"%s\"\n", line.arguments.front().c_str());
        return kUsageError;
    }
    output.Flush();
    return output.Good() ? 0 : kUsageError;
}

} // namespace host
