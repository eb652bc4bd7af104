// The tree of a calculation. Runs of operators of one rank are flat, so that only brackets and arguments
// make the tree deep; the parser bounds that depth.
#pragma once

#include "platform/fmwrapper/host_engine.h"
#include "platform/fmwrapper/objects.h"

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace host {

struct Builtin;
struct Expression;

enum class Operator : std::uint8_t {
    kOr,
    kXor,
    kAnd,
    kEqual,
    kNotEqual,
    kLess,
    kGreater,
    kLessOrEqual,
    kGreaterOrEqual,
    kJoin,
    kAdd,
    kSubtract,
    kMultiply,
    kDivide
};

struct Literal {
    FM_Data value;
};

/// A name of a Let; `slot` counts the names that are in sight, from the outermost.
struct LocalVariable {
    std::size_t slot;
};

/// A field of the engine's record.
struct FieldReference {
    std::size_t field;
};

struct SessionVariable {
    std::string name; ///< lower case, with its "$" or "$$"
};

struct Not {
    std::unique_ptr<Expression> operand;
};

struct Negation {
    std::unique_ptr<Expression> operand;
};

/// operands[0] operators[0] operands[1] operators[1] …, from left to right.
struct Chain {
    std::vector<Operator> operators;
    std::vector<Expression> operands;
};

struct Binding {
    std::string session_name; ///< empty: a local name, which takes the next slot
    std::unique_ptr<Expression> value;
};

struct Let {
    std::vector<Binding> bindings;
    std::unique_ptr<Expression> body;
};

struct BuiltinCall {
    const Builtin* function;
    std::vector<Expression> arguments;
};

/// Of a function that a plug-in registered; the engine keeps it alive through the evaluation.
struct ExternalCall {
    const fm::ExternalFunction* function;
    std::vector<Expression> arguments;
};

struct Expression {
    std::variant<Literal, LocalVariable, FieldReference, SessionVariable, Not, Negation, Chain, Let,
                 BuiltinCall, ExternalCall>
        node;
};

} // namespace host
