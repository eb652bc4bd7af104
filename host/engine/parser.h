// Grammar of the calculation language. Ranks, loosest first: or xor · and · not · comparisons · & · + - ·
// * / · unary + and -. Names are resolved and parameters counted here, so that a tree always evaluates.
#pragma once

#include "host/engine/lexer.h"
#include "host/engine/syntax.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace host {

class Engine;

class Parser {
public:
    /// Both outlive the parser; the tree refers to functions of the engine.
    Parser(std::string_view source, const Engine& engine)
        : source_(source), lexer_(source), engine_(engine) {}

    std::variant<Expression, ParseError> Parse();

    static constexpr int kMaxDepth = 200; ///< of brackets, arguments and signs

private:
    // Each of these answers nullopt after Fail; the first complaint stands.
    std::optional<Expression> ParseRank(std::size_t rank);
    std::optional<Expression> ParseNot(std::size_t operand_rank);
    std::optional<Expression> ParseSigned();
    std::optional<Expression> ParsePrimary();
    std::optional<Expression> ParseNumber();
    std::optional<Expression> ParseName();
    std::optional<Expression> ParseGet();
    std::optional<Expression> ParseLet();
    bool ParseBinding(Let& let);
    std::optional<Expression> ParseCall(const Token& name);
    bool ParseArguments(std::vector<Expression>& arguments, bool lists);

    [[nodiscard]] bool At(std::string_view symbol) const;
    [[nodiscard]] bool AtWord(std::string_view word) const;
    void Advance();
    bool Expect(std::string_view symbol);
    std::nullopt_t Fail(std::size_t offset, std::string message);
    std::nullopt_t FailUnexpected(const std::string& expected);

    static constexpr std::size_t kNoOperator = SIZE_MAX;

    std::string_view source_;
    Lexer lexer_;
    const Engine& engine_;
    Token token_;
    std::size_t operator_rank_ = kNoOperator; ///< of token_, when it is an operator
    Operator operator_ = Operator::kOr;
    std::vector<std::string> locals_;
    int depth_ = 0;
    std::optional<ParseError> error_;
};

} // namespace host
