#include "host/fields/record_work.h"

#include "host/fields/field_value.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <charconv>
#include <tuple>
#include <utility>

namespace host {
namespace {

constexpr std::string_view kWhere = "where";

// "$code:message"; nullopt for any other text.
std::optional<std::pair<FM_Error, std::string>> ParseErrorText(const FM_Data& value) {
    if (value.Type() != kFM_TypeText || !value.AsText().units.starts_with(u'$')) return std::nullopt;
    const std::string text = utf::ToUtf8(value.AsText().units);
    FM_Error code = 0;
    const auto parsed = std::from_chars(text.data() + 1, text.data() + text.size(), code);
    if (parsed.ec != std::errc() || parsed.ptr == text.data() + text.size() || *parsed.ptr != ':')
        return std::nullopt;
    return std::pair(code, std::string(parsed.ptr + 1));
}

// What the plug-in keeps about how its latest call of a sound function ended.
std::pair<FM_Error, std::string> KeptError(Engine& engine) {
    constexpr std::string_view kFunction = "media_getlasterror";
    if (engine.Find(kFunction) == nullptr) return {};
    return ParseErrorText(engine.Evaluate(kFunction).value).value_or(std::pair(FM_Error{0}, std::string()));
}

} // namespace

std::string RecordFailure::Text() const {
    std::string text = part + ": ";
    if (!function.empty()) text += function + ": ";
    text += std::to_string(code);
    if (!message.empty()) text += ": " + message;
    return text;
}

std::optional<RecordFailure> FailureOf(Engine& engine, const Outcome& outcome, const std::string& part,
                                       FieldType wanted) {
    const std::string prefix = outcome.function + ": ";
    RecordFailure failure{part, outcome.function, outcome.error, outcome.message};
    if (outcome.parse_error) {
        failure.code = Engine::kCalculationError;
        failure.message = outcome.parse_error->message;
    } else if (outcome.error != kFM_ErrorNone) {
        auto [code, message] = KeptError(engine);
        if (failure.message.empty() && code == outcome.error) failure.message = std::move(message);
    } else if (auto text = ParseErrorText(outcome.value)) {
        if (text->first == 0 && wanted != FieldType::kContainer) return std::nullopt;
        std::tie(failure.code, failure.message) = std::move(*text);
    } else {
        if (wanted != FieldType::kContainer || !outcome.value.IsEmpty() || outcome.function.empty())
            return std::nullopt;
        std::tie(failure.code, failure.message) = KeptError(engine);
        if (failure.code == 0 || !failure.message.starts_with(prefix)) return std::nullopt;
    }
    if (failure.message.starts_with(prefix))
        failure.message.erase(0, failure.message.find_first_not_of(' ', prefix.size()));
    return failure;
}

std::optional<std::vector<FieldCalculation>>
ParseFieldCalculations(const Table& table, const std::vector<std::string>& texts, std::string& problem) {
    std::vector<FieldCalculation> calculations;
    for (const std::string& text : texts) {
        const auto sign = text.find('=');
        const std::string name = text.substr(0, std::min(text.find_last_not_of(" \t", sign - 1) + 1, sign));
        const Field* field = table.Find(name);
        const bool is_complete = sign != std::string::npos && sign + 1 < text.size();
        if (!is_complete || field == nullptr) {
            problem = !is_complete ? '"' + text + "\" is not FIELD=CALCULATION"
                                   : table.name + " has no field \"" + name + '"';
            return std::nullopt;
        }
        calculations.push_back(
            {static_cast<std::size_t>(field - table.fields.data()), text.substr(sign + 1)});
    }
    return calculations;
}

RecordWorker::RecordWorker(Engine& engine, RecordValues& values, const Table& table, const RecordWork& work)
    : engine_(engine), values_(values), table_(table), work_(work) {
    engine_.fields = &values_;
}

RecordResult RecordWorker::Do(std::int64_t record) {
    RecordResult result{.record = record, .chosen = true, .changes = {}, .failure = {}};
    values_.MoveTo(record);
    engine_.ForgetSessionVariables();
    if (!work_.condition.empty()) {
        const Outcome outcome = engine_.Evaluate(work_.condition);
        result.failure = FailureOf(engine_, outcome, std::string(kWhere));
        if (result.failure) return result;
        result.chosen = outcome.value.AsBoolean();
        if (!result.chosen) return result;
    }
    for (const FieldCalculation& calculation : work_.calculations) {
        const Field& field = table_.fields[calculation.field];
        Outcome outcome = engine_.Evaluate(calculation.calculation);
        result.failure = FailureOf(engine_, outcome, field.name, field.type);
        if (result.failure) break;
        FM_Data value = ValueFor(field.type, outcome.value);
        values_.Set(calculation.field, value);
        result.changes.push_back({calculation.field, std::move(value)});
    }
    if (result.failure) result.changes.clear();
    return result;
}

} // namespace host
