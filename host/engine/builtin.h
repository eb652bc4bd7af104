// The functions that the host itself brings, and how they reach their arguments.
#pragma once

#include "host/engine/evaluation.h"
#include "host/engine/syntax.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace host {

/// The arguments of one call of a built-in function. An argument is evaluated when it is asked for, each
/// time anew: a function asks once, and not at all for the branches that it does not take.
class Arguments {
public:
    Arguments(Evaluation& evaluation, std::span<const Expression> expressions)
        : evaluation_(evaluation), expressions_(expressions) {}

    [[nodiscard]] std::size_t Count() const { return expressions_.size(); }
    [[nodiscard]] FM_Data Value(std::size_t index) const { return evaluation_.Value(expressions_[index]); }
    [[nodiscard]] std::u16string Text(std::size_t index) const { return Value(index).AsText().units; }
    [[nodiscard]] std::string Utf8(std::size_t index) const;
    [[nodiscard]] bool Boolean(std::size_t index) const { return Value(index).AsBoolean(); }
    /// The number as an integer, held at the ends of the range.
    [[nodiscard]] std::int64_t Integer(std::size_t index) const;
    /// In seconds, from 0 to a day.
    [[nodiscard]] double Seconds(std::size_t index) const;
    [[nodiscard]] Evaluation& GetEvaluation() const { return evaluation_; }

private:
    Evaluation& evaluation_;
    std::span<const Expression> expressions_;
};

enum class BuiltinGroup : std::uint8_t { kLogic, kText, kNumber, kGet, kHost };

enum class CountRule : std::uint8_t { kAny, kEven, kOdd };

struct Builtin {
    std::string_view key; ///< name in lower case; of Get functions: "get(" and the name
    BuiltinGroup group;
    std::string_view prototype;
    std::size_t minimum;
    int maximum; ///< -1: no upper limit
    FM_Data (*function)(const Arguments& arguments);
    CountRule rule = CountRule::kAny; ///< within minimum and maximum
};

/// All of them, sorted by key.
std::span<const Builtin> Builtins();
/// The function of that key, or nullptr.
const Builtin* FindBuiltin(std::string_view key);

/// Number of an `Integer` result.
FM_Data NumberOf(std::int64_t value);
FM_Data TextOf(std::u16string text);

} // namespace host
