#include "host/fields/record_work.h"

#include "host/engine/arithmetic.h"
#include "host/engine/error_text.h"
#include "host/fields/field_value.h"

#include <algorithm>
#include <utility>

namespace host {
namespace {

constexpr std::string_view kWhere = "where";

// What the plug-in keeps about how its latest call of a sound function ended.
ErrorText KeptError(Engine& engine) {
    constexpr std::string_view kFunction = "media_getlasterror";
    if (engine.Find(kFunction) == nullptr) return {};
    return ParseErrorText(engine.Evaluate(kFunction).value).value_or(ErrorText{});
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
        ErrorText kept = KeptError(engine);
        const bool is_its_text = static_cast<FM_Error>(kept.code) == outcome.error; // the host's are narrower
        if (failure.message.empty() && is_its_text) failure.message = std::move(kept.message);
    } else if (auto text = ParseErrorText(outcome.value)) {
        if (text->code == 0 && wanted != FieldType::kContainer) return std::nullopt;
        failure.code = text->code;
        failure.message = std::move(text->message);
    } else if (wanted == FieldType::kNumber && !NumberIn(outcome.value)) {
        failure.code = Engine::kCalculationError;
        failure.message = "the result is no number (?)";
    } else {
        if (wanted != FieldType::kContainer || !outcome.value.IsEmpty() || outcome.function.empty())
            return std::nullopt;
        ErrorText kept = KeptError(engine);
        if (kept.code == 0 || !kept.message.starts_with(prefix)) return std::nullopt;
        failure.code = kept.code;
        failure.message = std::move(kept.message);
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
