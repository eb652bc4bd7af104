#include "platform/win32/message_box.h"

#include <cstdio>
#include <string>

namespace win32 {

int ShowAlert(std::string_view title, std::string_view message, std::string_view button) {
    std::string line = "alert: ";
    line.append(title).append(": ").append(message).append(" [").append(button).append("]\n");
    std::fwrite(line.data(), 1, line.size(), stderr);
    return IDOK;
}

} // namespace win32

int MessageBoxA(HWND, const char* text, const char* caption, UINT) {
    return win32::ShowAlert(caption, text, "OK");
}
