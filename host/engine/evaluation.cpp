#include "host/engine/evaluation.h"

#include "host/engine/arithmetic.h"
#include "host/engine/builtin.h"
#include "host/engine/comparison.h"
#include "host/engine/engine.h"
#include "platform/text/utf.h"

#include <utility>

namespace host {

Evaluation::Evaluation(Engine& engine) : engine_(engine), allowance_(engine.text_allowance) {}

FM_Data Evaluation::Value(const Expression& expression) {
    return std::visit([this](const auto& node) { return this->ValueOf(node); }, expression.node);
}

bool Evaluation::Charge(std::size_t units) {
    if (units <= allowance_) {
        allowance_ -= units;
        return true;
    }
    (void)Fail(kFM_ErrorOutOfMemory, "the calculation makes too much text");
    return false;
}

FM_Data Evaluation::Fail(FM_Error code, std::string message) {
    if (error_ == kFM_ErrorNone) {
        error_ = code;
        message_ = std::move(message);
    }
    return {};
}

FM_Data Evaluation::CopyOf(const FM_Data& value) {
    if (value.Type() == kFM_TypeText && !Charge(value.AsText().units.size())) return {};
    return value;
}

FM_Data Evaluation::ValueOf(const Literal& literal) {
    return literal.value;
}

FM_Data Evaluation::ValueOf(const LocalVariable& variable) {
    return CopyOf(locals_[variable.slot]);
}

FM_Data Evaluation::ValueOf(const FieldReference& reference) {
    std::string problem;
    const FM_Data* value = engine_.fields->FieldValue(reference.field, problem);
    return value != nullptr ? CopyOf(*value) : Fail(kFM_ErrorReading, std::move(problem));
}

FM_Data Evaluation::ValueOf(const SessionVariable& variable) {
    return CopyOf(engine_.SessionVariable(variable.name));
}

FM_Data Evaluation::ValueOf(const Not& operation) {
    return NumberOf(Value(*operation.operand).AsBoolean() ? 0 : 1);
}

FM_Data Evaluation::ValueOf(const Negation& operation) {
    return Negated(Value(*operation.operand));
}

FM_Data Evaluation::ValueOf(const Chain& chain) {
    if (chain.operators.front() == Operator::kJoin) return Joined(chain);
    FM_Data left = Value(chain.operands.front());
    for (std::size_t i = 0; i < chain.operators.size(); ++i) {
        const Operator operation = chain.operators[i];
        const Expression& operand = chain.operands[i + 1];
        switch (operation) {
        case Operator::kOr: // the right side is worked out only when it matters
            left = NumberOf(left.AsBoolean() || Value(operand).AsBoolean() ? 1 : 0);
            break;
        case Operator::kAnd: left = NumberOf(left.AsBoolean() && Value(operand).AsBoolean() ? 1 : 0); break;
        case Operator::kXor: left = NumberOf(left.AsBoolean() != Value(operand).AsBoolean() ? 1 : 0); break;
        case Operator::kAdd:
        case Operator::kSubtract:
        case Operator::kMultiply:
        case Operator::kDivide: left = Calculated(operation, left, Value(operand)); break;
        default: left = NumberOf(Holds(operation, left, Value(operand)) ? 1 : 0);
        }
    }
    return left;
}

FM_Data Evaluation::Joined(const Chain& chain) {
    std::u16string text;
    for (const Expression& operand : chain.operands) {
        const FM_Data part = Value(operand);
        if (!Charge(part.AsText().units.size())) return {};
        text += part.AsText().units;
    }
    return FM_Data(std::move(text));
}

FM_Data Evaluation::ValueOf(const Let& let) {
    const std::size_t outer_names = locals_.size();
    for (const Binding& binding : let.bindings) {
        FM_Data value = Value(*binding.value);
        if (binding.session_name.empty()) {
            locals_.push_back(std::move(value));
        } else {
            engine_.SessionVariable(binding.session_name) = std::move(value);
        }
    }
    FM_Data value = Value(*let.body);
    locals_.erase(locals_.begin() + static_cast<std::ptrdiff_t>(outer_names), locals_.end());
    return value;
}

FM_Data Evaluation::ValueOf(const BuiltinCall& call) {
    return call.function->function(Arguments(*this, call.arguments));
}

FM_Data Evaluation::ValueOf(const ExternalCall& call) {
    FM_DataVect parameters;
    parameters.values.reserve(call.arguments.size());
    for (const Expression& argument : call.arguments) parameters.values.push_back(Value(argument));
    FM_ExprEnv environment;
    environment.engine = &engine_;
    FM_Data result;
    const FM_Error code = call.function->handler(call.function->id, environment, parameters, result);
    const bool first_error = code != kFM_ErrorNone && error_ == kFM_ErrorNone;
    if (first_error) (void)Fail(code, {});
    const auto is_suspect = [&] {
        return result.IsEmpty() || (result.Type() == kFM_TypeText && result.AsText().units.starts_with(u'$'));
    };
    if (first_error || (error_ == kFM_ErrorNone && is_suspect()))
        function_ = utf::ToUtf8(call.function->name);
    return result;
}

} // namespace host
