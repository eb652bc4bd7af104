#include "platform/win32/progress_display.h"

#include "platform/fmwrapper/session.h"

#include <algorithm>
#include <cstdio>

namespace win32 {
namespace {

constexpr std::chrono::seconds kPatience{1};
constexpr const char* kClearLine = "\r\x1b[K"; // to the line's beginning, and away with what it holds

} // namespace

ProgressDisplay::ProgressDisplay(std::string label)
    : label_(std::move(label)), started_(std::chrono::steady_clock::now()) {}

ProgressDisplay::~ProgressDisplay() {
    if (shown_ >= 0) std::fputs(kClearLine, stderr);
}

void ProgressDisplay::Show(double done) {
    if (!fm::CurrentSession().progress) return;
    const int percent = static_cast<int>(std::clamp(done, 0.0, 1.0) * 100);
    if (percent == shown_ || std::chrono::steady_clock::now() - started_ < kPatience) return;
    shown_ = percent;
    std::fprintf(stderr, "%s%s: %d %%", kClearLine, label_.c_str(), percent);
    std::fflush(stderr);
}

} // namespace win32
