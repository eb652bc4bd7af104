#include "platform/win32/message_box.h"

#include "platform/win32/windows_module.h"

#include <cstdio>
#include <string>

namespace win32 {
namespace {

int Show(const AlertWindow& alert) {
    const WindowsModule* windows = OpenWindows();
    if (windows != nullptr && windows->show_alert(alert)) return IDOK;
    const std::string line = "alert: " + alert.title + ": " + alert.message + " [" + alert.button + "]\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
    return IDOK;
}

} // namespace

int ShowAlert(std::string_view title, std::string_view message, std::string_view button) {
    return Show({std::string(title), std::string(message), std::string(button), AlertWindow::Icon::kWarning});
}

} // namespace win32

int MessageBoxA(HWND, const char* text, const char* caption, UINT flags) {
    const bool informs = (flags & MB_ICONINFORMATION) != 0;
    return win32::Show(
        {caption, text, "OK",
         informs ? win32::AlertWindow::Icon::kInformation : win32::AlertWindow::Icon::kWarning});
}
