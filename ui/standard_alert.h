// The standard alert: a modal window with a title, a message and one button.
#pragma once

#include <memory>
#include <string_view>

namespace corvane {

class IStandardAlert {
public:
    virtual ~IStandardAlert() = default;

    /// Shows the alert and returns when its button has been pressed.
    virtual void Run() = 0;
};

/// An alert owned by the host's active window. Texts are UTF-8.
std::unique_ptr<IStandardAlert> NewStandardAlert(std::string_view title, std::string_view message,
                                                 std::string_view button);

} // namespace corvane
