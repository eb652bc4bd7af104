#include "ui/standard_alert.h"

#include "platform/win32/message_box.h"

#include <string>

namespace corvane {
namespace {

class CStandardAlert : public IStandardAlert {
public:
    CStandardAlert(std::string_view title, std::string_view message, std::string_view button)
        : title_(title), message_(message), button_(button) {}

    void Run() override { win32::ShowAlert(title_, message_, button_); }

private:
    std::string title_;
    std::string message_;
    std::string button_;
};

} // namespace

std::unique_ptr<IStandardAlert> NewStandardAlert(std::string_view title, std::string_view message,
                                                 std::string_view button) {
    return std::make_unique<CStandardAlert>(title, message, button);
}

} // namespace corvane
