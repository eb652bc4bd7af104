// Works out the value of a tree.
#pragma once

#include "host/engine/syntax.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

class Engine;

/// One run of one calculation. A failure does not stop it: the failing part gives its value (mostly the
/// empty text), and the first code stands for the whole.
class Evaluation {
public:
    explicit Evaluation(Engine& engine);

    FM_Data Value(const Expression& expression);

    /// Takes `units` of text from the calculation's allowance (Engine::text_allowance). False, with the
    /// code kFM_ErrorOutOfMemory, when it is used up.
    [[nodiscard]] bool Charge(std::size_t units);
    /// Notes a code of the host, and for a helper's a message; the first one stands. Gives the empty text.
    FM_Data Fail(FM_Error code, std::string message);

    [[nodiscard]] Engine& GetEngine() { return engine_; }
    [[nodiscard]] FM_Error Error() const { return error_; }
    [[nodiscard]] const std::string& Message() const { return message_; }
    /// Name of the plug-in's function that answered Error; without an error, of the latest that gave nothing,
    /// or a text with "$" in front as error texts have. Empty when there is none.
    [[nodiscard]] const std::string& Function() const { return function_; }

private:
    static FM_Data ValueOf(const Literal& literal);
    FM_Data ValueOf(const LocalVariable& variable);
    FM_Data ValueOf(const FieldReference& reference);
    FM_Data ValueOf(const SessionVariable& variable);
    FM_Data ValueOf(const Not& operation);
    FM_Data ValueOf(const Negation& operation);
    FM_Data ValueOf(const Chain& chain);
    FM_Data ValueOf(const Let& let);
    FM_Data ValueOf(const BuiltinCall& call);
    FM_Data ValueOf(const ExternalCall& call);
    FM_Data Joined(const Chain& chain);
    FM_Data CopyOf(const FM_Data& value);

    Engine& engine_;
    std::vector<FM_Data> locals_;
    std::size_t allowance_;
    FM_Error error_ = kFM_ErrorNone;
    std::string message_;
    std::string function_;
};

} // namespace host
