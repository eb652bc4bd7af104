// What is worked out for each record of a table: a condition that chooses records, and calculations.
#pragma once

#include "host/engine/engine.h"
#include "host/fields/record_values.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// Why a record got no result.
struct RecordFailure {
    std::string part;     ///< the field whose calculation failed, or "where"
    std::string function; ///< of the plug-in; empty when none is known
    std::int32_t code = 0;
    std::string message; ///< without the function's name; may be empty

    /// "picture: Media_ConvertImage: -50: message", without what is empty.
    [[nodiscard]] std::string Text() const;
};

/// The failure of a calculation that answered a code or gave an error text; nullopt when it did neither.
/// Asks the plug-in for the message that belongs to the code. Where a container is wanted two more are
/// failures, so that neither takes the place of a picture or a sound: a text of the code 0, such as that of a
/// person's Cancel, and nothing at all from a function that keeps its code to itself.
std::optional<RecordFailure> FailureOf(Engine& engine, const Outcome& outcome, const std::string& part,
                                       FieldType wanted = FieldType::kText);

struct FieldCalculation {
    std::size_t field; ///< index in the table
    std::string calculation;
};

struct RecordWork {
    std::string condition; ///< empty: every record
    std::vector<FieldCalculation> calculations;
};

/// "field=calculation" for each text. nullopt, with the reason in `problem`, when one is not that or its
/// field can't be set.
std::optional<std::vector<FieldCalculation>>
ParseFieldCalculations(const Table& table, const std::vector<std::string>& texts, std::string& problem);

struct RecordResult {
    std::int64_t record = 0;
    bool chosen = false;              ///< false: the condition does not hold
    std::vector<FieldChange> changes; ///< one for each calculation, unless there is a failure
    std::optional<RecordFailure> failure;
};

class RecordWorker {
public:
    /// All of them outlive the worker. The engine's record is `values` as long as the worker lives.
    RecordWorker(Engine& engine, RecordValues& values, const Table& table, const RecordWork& work);
    ~RecordWorker() { engine_.fields = nullptr; }
    RecordWorker(const RecordWorker&) = delete;
    RecordWorker& operator=(const RecordWorker&) = delete;

    /// Each calculation sees what those before it gave, and session variables that begin empty.
    RecordResult Do(std::int64_t record);

private:
    Engine& engine_;
    RecordValues& values_;
    const Table& table_;
    const RecordWork& work_;
};

} // namespace host
