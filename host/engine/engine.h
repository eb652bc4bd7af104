// The calculation engine: the functions that plug-ins registered, the session's variables, and the
// evaluation of one calculation at a time.
#pragma once

#include "host/engine/field_source.h"
#include "host/engine/parse_error.h"
#include "platform/fmwrapper/host_engine.h"
#include "platform/fmwrapper/objects.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// What became of one calculation.
struct Outcome {
    FM_Data value;        ///< what the calculation left, whatever the code; empty after a parse error
    FM_Error error = 0;   ///< the first non-zero code that a handler or a helper of the host answered
    std::string message;  ///< with a code of the host's own helpers: what went wrong, for a person
    std::string function; ///< of the plug-in, that answered the code, or gave an error text or nothing
    std::optional<ParseError> parse_error; ///< set when the text is no calculation: nothing was evaluated
};

/// A registered function, with its name as calculations look it up.
struct Registration {
    fm::ExternalFunction function;
    std::string key; ///< name in lower case, UTF-8
};

class Engine : public fm::HostEngine {
public:
    /// Host path text of the current database, as Get ( FilePath ) answers it.
    std::string database;
    /// Version text of the application ("10.0v1").
    std::string application_version;
    /// How much text one calculation may make in all, in UTF-16 units (1 GiB), so that none grows without
    /// bounds.
    std::size_t text_allowance = std::size_t{512} << 20;
    /// The record whose fields are names in calculations; none: there are no fields. Not owned.
    FieldSource* fields = nullptr;
    /// Called again and again while HostPump lets time pass.
    std::function<void()> on_idle;

    /// Parses and evaluates UTF-8 text; malformed bytes in text literals become U+FFFD.
    Outcome Evaluate(std::string_view calculation);
    /// Why the text is no calculation; nullopt when it is one. Evaluates nothing.
    [[nodiscard]] std::optional<ParseError> Check(std::string_view calculation) const;

    /// Refuses (kFM_ErrorWrongParameter) an id that its plug-in already uses.
    FM_Error Register(const fm::ExternalFunction& function) override;
    FM_Error Unregister(std::uint32_t plugin_id, std::int16_t function_id) override;
    /// kCalculationError when the expression does not parse.
    FM_Error Evaluate(const std::u16string& expression, FM_Data& result) override;

    /// All registrations in their order, also those that an earlier one of the same name hides.
    [[nodiscard]] const std::vector<std::unique_ptr<Registration>>& Registrations() const {
        return registrations_;
    }
    /// The function of that name (lower case), or nullptr.
    [[nodiscard]] const fm::ExternalFunction* Find(std::string_view key) const;

    /// The value of a session variable ("$name" or "$$name", lower case); made empty at first use.
    FM_Data& SessionVariable(const std::string& name);
    void ForgetSessionVariables() { variables_.clear(); }

    static constexpr FM_Error kCalculationError = 1200;

private:
    std::vector<std::unique_ptr<Registration>> registrations_;
    std::map<std::string, FM_Data> variables_;
};

} // namespace host
