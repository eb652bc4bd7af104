#include "host/commands/progress_line.h"

#include "host/commands/terminal_text.h"
#include "platform/fmwrapper/session.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace host {
namespace {

std::string Duration(double seconds) {
    constexpr double kMost = 100.0 * 3600;
    const auto whole = static_cast<int>(std::lround(std::min(seconds, kMost)));
    std::array<char, 32> text = {};
    if (whole >= 3600) {
        std::snprintf(text.data(), text.size(), "%d:%02d:%02d", whole / 3600, whole / 60 % 60, whole % 60);
    } else {
        std::snprintf(text.data(), text.size(), "%d:%02d", whole / 60, whole % 60);
    }
    return text.data();
}

} // namespace

ProgressLine::ProgressLine(std::int64_t total, bool shown, std::int64_t done)
    : total_(total), before_(done), done_(done), shown_(shown), plugin_draws_(fm::CurrentSession().progress) {
    if (shown_) fm::CurrentSession().progress = false;
}

ProgressLine::~ProgressLine() {
    Clear();
    fm::CurrentSession().progress = plugin_draws_;
}

std::string ProgressLine::Text(std::int64_t before, std::int64_t done, std::int64_t total, double seconds) {
    constexpr std::int64_t kWidth = 24;
    const std::int64_t most = std::max<std::int64_t>(total, 1);
    const auto filled = static_cast<std::size_t>(kWidth * std::clamp<std::int64_t>(done, 0, most) / most);
    std::string text = '[' + std::string(filled, '#') + std::string(kWidth - filled, ' ') + "] " +
                       std::to_string(done) + '/' + std::to_string(total);
    const auto fresh = static_cast<double>(done - before);
    if (fresh <= 0 || seconds <= 0) return text;
    std::array<char, 32> rate = {};
    std::snprintf(rate.data(), rate.size(), "  %.1f/s  ", fresh / seconds);
    return text + rate.data() +
           Duration(static_cast<double>(std::max<std::int64_t>(total - done, 0)) * seconds / fresh) + " left";
}

void ProgressLine::Step() {
    constexpr auto kPace = std::chrono::milliseconds(100);
    ++done_;
    if (!shown_ || Clock::now() < next_drawing_) return;
    Draw();
    next_drawing_ = Clock::now() + kPace;
}

void ProgressLine::Complain(const std::string& text) {
    Clear();
    std::fprintf(stderr, "%s\n", TerminalText(text).c_str());
}

void ProgressLine::Draw() {
    const double seconds = std::chrono::duration<double>(Clock::now() - begin_).count();
    std::fprintf(stderr, "\r%s\x1B[K", Text(before_, done_, total_, seconds).c_str());
    drawn_ = true;
}

void ProgressLine::Clear() {
    if (drawn_) std::fputs("\r\x1B[K", stderr);
    drawn_ = false;
}

} // namespace host
