#include "host/engine/engine.h"

#include "host/engine/evaluation.h"
#include "host/engine/parser.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <new>
#include <utility>

namespace host {

Outcome Engine::Evaluate(std::string_view calculation) {
    Outcome outcome;
    try {
        auto parsed = Parser(calculation, *this).Parse();
        if (auto* error = std::get_if<ParseError>(&parsed)) {
            outcome.parse_error = std::move(*error);
            return outcome;
        }
        Evaluation evaluation(*this);
        outcome.value = evaluation.Value(std::get<Expression>(parsed));
        outcome.error = evaluation.Error();
        outcome.message = evaluation.Message();
        outcome.function = evaluation.Function();
    } catch (const std::bad_alloc&) {
        outcome.value = {};
        outcome.error = kFM_ErrorOutOfMemory;
        outcome.message = "out of memory";
    }
    return outcome;
}

std::optional<ParseError> Engine::Check(std::string_view calculation) const {
    auto parsed = Parser(calculation, *this).Parse();
    auto* error = std::get_if<ParseError>(&parsed);
    return error != nullptr ? std::optional(std::move(*error)) : std::nullopt;
}

FM_Error Engine::Evaluate(const std::u16string& expression, FM_Data& result) {
    Outcome outcome = Evaluate(utf::ToUtf8(expression));
    if (outcome.parse_error) return kCalculationError;
    if (outcome.error == kFM_ErrorNone) result = std::move(outcome.value);
    return outcome.error;
}

FM_Error Engine::Register(const fm::ExternalFunction& function) {
    const bool taken = std::ranges::any_of(registrations_, [&](const auto& other) {
        return other->function.plugin_id == function.plugin_id && other->function.id == function.id;
    });
    if (taken || function.name.empty()) return kFM_ErrorWrongParameter;
    registrations_.push_back(
        std::make_unique<Registration>(Registration{function, utf::ToLower(utf::ToUtf8(function.name))}));
    return kFM_ErrorNone;
}

FM_Error Engine::Unregister(std::uint32_t plugin_id, std::int16_t function_id) {
    const auto removed = std::erase_if(registrations_, [&](const auto& registration) {
        return registration->function.plugin_id == plugin_id && registration->function.id == function_id;
    });
    return removed > 0 ? kFM_ErrorNone : kFM_ErrorWrongParameter;
}

const fm::ExternalFunction* Engine::Find(std::string_view key) const {
    const auto found = std::ranges::find_if(
        registrations_, [&](const auto& registration) { return registration->key == key; });
    return found == registrations_.end() ? nullptr : &(*found)->function;
}

FM_Data& Engine::SessionVariable(const std::string& name) {
    return variables_[name];
}

} // namespace host
