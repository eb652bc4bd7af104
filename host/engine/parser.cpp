#include "host/engine/parser.h"

#include "host/engine/builtin.h"
#include "host/engine/engine.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <array>
#include <utility>

namespace host {
namespace {

struct OperatorSpelling {
    std::string_view written;
    std::size_t rank; ///< 0 binds loosest
    Operator meaning;
};

constexpr auto kOperators = std::to_array<OperatorSpelling>({
    {"or", 0, Operator::kOr},
    {"xor", 0, Operator::kXor},
    {"and", 1, Operator::kAnd},
    {"=", 2, Operator::kEqual},
    {"<>", 2, Operator::kNotEqual},
    {"<", 2, Operator::kLess},
    {">", 2, Operator::kGreater},
    {"<=", 2, Operator::kLessOrEqual},
    {">=", 2, Operator::kGreaterOrEqual},
    {"&", 3, Operator::kJoin},
    {"+", 4, Operator::kAdd},
    {"-", 4, Operator::kSubtract},
    {"*", 5, Operator::kMultiply},
    {"/", 5, Operator::kDivide},
});
constexpr std::size_t kConjunctionRank = 1;
constexpr std::size_t kRankCount = 6;

constexpr auto kReservedWords = std::to_array<std::string_view>({"and", "or", "xor", "not", "true", "false"});

// Counts one level of nesting as long as it lives.
class Nesting {
public:
    explicit Nesting(int& depth) : depth_(depth) { ++depth_; }
    ~Nesting() { --depth_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

private:
    int& depth_;
};

template <class Unary>
Expression Applied(Expression operand) {
    Unary operation;
    operation.operand = std::make_unique<Expression>(std::move(operand));
    return Expression{std::move(operation)};
}

std::string Quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

std::string Parameters(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " parameter" : " parameters");
}

std::string AllowedCount(std::size_t minimum, int maximum, CountRule rule) {
    std::string kind;
    if (rule == CountRule::kEven) kind = "an even number of ";
    if (rule == CountRule::kOdd) kind = "an odd number of ";
    if (!kind.empty())
        return kind + "parameters" + (minimum > 0 ? ", at least " + std::to_string(minimum) : "");
    if (maximum < 0) return "at least " + Parameters(minimum);
    const auto most = static_cast<std::size_t>(maximum);
    if (most == 0) return "no parameters";
    return minimum == most ? Parameters(most) : std::to_string(minimum) + " to " + Parameters(most);
}

bool CountFits(std::size_t count, std::size_t minimum, int maximum, CountRule rule) {
    if (count < minimum || (maximum >= 0 && count > static_cast<std::size_t>(maximum))) return false;
    return rule == CountRule::kAny || (count % 2 == 1) == (rule == CountRule::kOdd);
}

} // namespace

std::variant<Expression, ParseError> Parser::Parse() {
    Advance();
    auto expression = ParseRank(0);
    if (expression && token_.kind != TokenKind::kEnd) expression = FailUnexpected("an operator");
    if (!expression) return *error_;
    return std::move(*expression);
}

std::nullopt_t Parser::Fail(std::size_t offset, std::string message) {
    if (!error_) error_ = ErrorAt(source_, offset, std::move(message));
    return std::nullopt;
}

std::nullopt_t Parser::FailUnexpected(const std::string& expected) {
    return Fail(token_.offset, token_.kind == TokenKind::kInvalid ? token_.value : "expected " + expected);
}

bool Parser::At(std::string_view symbol) const {
    return token_.kind == TokenKind::kSymbol && token_.text == symbol;
}

bool Parser::AtWord(std::string_view word) const {
    return token_.kind == TokenKind::kName && token_.value == word;
}

bool Parser::Expect(std::string_view symbol) {
    if (!At(symbol)) {
        FailUnexpected(Quoted(symbol));
        return false;
    }
    Advance();
    return true;
}

void Parser::Advance() {
    token_ = lexer_.Next();
    operator_rank_ = kNoOperator;
    if (token_.kind != TokenKind::kSymbol && token_.kind != TokenKind::kName) return;
    const std::string_view written =
        token_.kind == TokenKind::kName ? std::string_view(token_.value) : token_.text;
    const auto found = std::ranges::find(kOperators, written, &OperatorSpelling::written);
    if (found == kOperators.end()) return;
    operator_rank_ = found->rank;
    operator_ = found->meaning;
}

std::optional<Expression> Parser::ParseRank(std::size_t rank) {
    const auto parse_operand = [&] {
        if (rank == kConjunctionRank) return ParseNot(rank + 1);
        return rank + 1 < kRankCount ? ParseRank(rank + 1) : ParseSigned();
    };
    auto first = parse_operand();
    if (!first || operator_rank_ != rank) return first;
    Chain chain;
    chain.operands.push_back(std::move(*first));
    while (operator_rank_ == rank) {
        chain.operators.push_back(operator_);
        Advance();
        auto operand = parse_operand();
        if (!operand) return std::nullopt;
        chain.operands.push_back(std::move(*operand));
    }
    return Expression{std::move(chain)};
}

// At the head of a comparison "not" negates all of it: not a = b.
std::optional<Expression> Parser::ParseNot(std::size_t operand_rank) {
    if (!AtWord("not")) return ParseRank(operand_rank);
    const Nesting nesting(depth_);
    if (depth_ > kMaxDepth) return Fail(token_.offset, "nested too deeply");
    Advance();
    auto operand = ParseNot(operand_rank);
    if (!operand) return std::nullopt;
    return Applied<Not>(std::move(*operand));
}

std::optional<Expression> Parser::ParseSigned() {
    const bool negated = At("-");
    const bool inverted = AtWord("not");
    if (!negated && !inverted && !At("+")) return ParsePrimary();
    const Nesting nesting(depth_);
    if (depth_ > kMaxDepth) return Fail(token_.offset, "nested too deeply");
    Advance();
    auto operand = ParseSigned();
    if (!operand) return std::nullopt;
    if (inverted) return Applied<Not>(std::move(*operand));
    if (negated) return Applied<Negation>(std::move(*operand));
    return operand;
}

std::optional<Expression> Parser::ParsePrimary() {
    const Nesting nesting(depth_);
    if (depth_ > kMaxDepth) return Fail(token_.offset, "nested too deeply");
    std::optional<Expression> expression;
    switch (token_.kind) {
    case TokenKind::kText:
        expression = Expression{Literal{FM_Data(utf::ToUtf16(token_.value))}};
        Advance();
        return expression;
    case TokenKind::kReturn: Advance(); return Expression{Literal{FM_Data(std::u16string(u"\r"))}};
    case TokenKind::kSessionVariable:
        expression = Expression{SessionVariable{std::move(token_.value)}};
        Advance();
        return expression;
    case TokenKind::kNumber: return ParseNumber();
    case TokenKind::kName: return ParseName();
    default: break;
    }
    if (!At("(")) return FailUnexpected("a value");
    Advance();
    expression = ParseRank(0);
    if (!expression || !Expect(")")) return std::nullopt;
    return expression;
}

std::optional<Expression> Parser::ParseNumber() {
    auto number = fm::Decimal::Parse(token_.text);
    if (!number) return Fail(token_.offset, "this number has too many digits");
    Advance();
    return Expression{Literal{FM_Data(std::move(*number))}};
}

std::optional<Expression> Parser::ParseName() {
    const Token name = std::move(token_);
    Advance();
    if (name.value == "true" || name.value == "false")
        return Expression{Literal{NumberOf(name.value == "true" ? 1 : 0)}};
    if (std::ranges::find(kReservedWords, name.value) != kReservedWords.end())
        return Fail(name.offset, "expected a value");
    if (At("(")) {
        if (name.value == "let") return ParseLet();
        if (name.value == "get") return ParseGet();
    } else {
        const auto local = std::find(locals_.rbegin(), locals_.rend(), name.value);
        if (local != locals_.rend())
            return Expression{LocalVariable{static_cast<std::size_t>(locals_.rend() - local) - 1}};
        const auto field = engine_.fields != nullptr ? engine_.fields->FindField(name.value) : std::nullopt;
        if (field) return Expression{FieldReference{*field}};
    }
    return ParseCall(name);
}

std::optional<Expression> Parser::ParseGet() {
    Advance();
    const Token name = std::move(token_);
    if (name.kind != TokenKind::kName) {
        token_ = name;
        return FailUnexpected("the name of a value of Get");
    }
    const Builtin* function = FindBuiltin("get(" + name.value + ")");
    if (function == nullptr) return Fail(name.offset, "unknown value " + Quoted(name.text) + " of Get");
    Advance();
    if (!Expect(")")) return std::nullopt;
    return Expression{BuiltinCall{function, {}}};
}

std::optional<Expression> Parser::ParseLet() {
    Advance();
    const std::size_t outer_names = locals_.size();
    Let let;
    if (At("[")) {
        do {
            Advance();
            if (!ParseBinding(let)) return std::nullopt;
        } while (At(";"));
        if (!Expect("]")) return std::nullopt;
    } else if (!ParseBinding(let)) {
        return std::nullopt;
    }
    if (!Expect(";")) return std::nullopt;
    auto body = ParseRank(0);
    if (!body || !Expect(")")) return std::nullopt;
    let.body = std::make_unique<Expression>(std::move(*body));
    locals_.resize(outer_names);
    return Expression{std::move(let)};
}

bool Parser::ParseBinding(Let& let) {
    const Token name = token_;
    const bool reserved = std::ranges::find(kReservedWords, name.value) != kReservedWords.end();
    if ((name.kind != TokenKind::kName || reserved) && name.kind != TokenKind::kSessionVariable) {
        FailUnexpected("a name");
        return false;
    }
    Advance();
    if (!Expect("=")) return false;
    auto value = ParseRank(0);
    if (!value) return false;
    Binding& binding = let.bindings.emplace_back();
    binding.value = std::make_unique<Expression>(std::move(*value));
    if (name.kind == TokenKind::kSessionVariable) {
        binding.session_name = name.value;
    } else {
        locals_.push_back(name.value);
    }
    return true;
}

std::optional<Expression> Parser::ParseCall(const Token& name) {
    const Builtin* builtin = FindBuiltin(name.value);
    const fm::ExternalFunction* external = builtin == nullptr ? engine_.Find(name.value) : nullptr;
    if (builtin == nullptr && external == nullptr)
        return Fail(name.offset, (At("(") ? "unknown function " : "unknown name ") + Quoted(name.text));
    std::vector<Expression> arguments;
    const bool takes_lists = builtin != nullptr && builtin->key == "substitute";
    if (At("(") && !ParseArguments(arguments, takes_lists)) return std::nullopt;
    const std::size_t minimum =
        builtin != nullptr ? builtin->minimum : static_cast<std::size_t>(std::max<int>(external->minimum, 0));
    const int maximum = builtin != nullptr ? builtin->maximum : external->maximum;
    const CountRule rule = builtin != nullptr ? builtin->rule : CountRule::kAny;
    if (!CountFits(arguments.size(), minimum, maximum, rule))
        return Fail(name.offset, std::string(name.text) + " takes " + AllowedCount(minimum, maximum, rule) +
                                     ", not " + std::to_string(arguments.size()));
    if (builtin != nullptr) return Expression{BuiltinCall{builtin, std::move(arguments)}};
    return Expression{ExternalCall{external, std::move(arguments)}};
}

// With `lists` an argument may be a list in square brackets; its members count as arguments of their own.
bool Parser::ParseArguments(std::vector<Expression>& arguments, bool lists) {
    Advance();
    if (At(")")) {
        Advance();
        return true;
    }
    const auto parse_separated = [&](auto& self, bool inside_list) -> bool {
        while (true) {
            if (lists && !inside_list && At("[")) {
                Advance();
                if (!self(self, true) || !Expect("]")) return false;
            } else {
                auto argument = ParseRank(0);
                if (!argument) return false;
                arguments.push_back(std::move(*argument));
            }
            if (!At(";")) return true;
            Advance();
        }
    };
    if (!parse_separated(parse_separated, false)) return false;
    if (At(")")) {
        Advance();
        return true;
    }
    FailUnexpected("\")\" or \";\"");
    return false;
}

} // namespace host
