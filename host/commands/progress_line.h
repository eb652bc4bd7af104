// One line on standard error that shows how far long work has come.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace host {

class ProgressLine {
public:
    /// `total` steps, of which some are done before the work begins; nothing is drawn unless `shown`. While
    /// it is, the plug-in draws no progress of its own.
    ProgressLine(std::int64_t total, bool shown, std::int64_t done = 0);
    /// Takes the line away.
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void Step();
    /// A complaint on a line of its own, with the line end added.
    void Complain(const std::string& text);

    /// "[####    ] 120/500  24.0/s  0:16 left"; `done` of them before the `seconds` began.
    static std::string Text(std::int64_t before, std::int64_t done, std::int64_t total, double seconds);

private:
    using Clock = std::chrono::steady_clock;
    void Draw();
    void Clear();

    std::int64_t total_;
    std::int64_t before_;
    std::int64_t done_;
    bool shown_;
    bool plugin_draws_; ///< what holds again afterwards
    bool drawn_ = false;
    Clock::time_point begin_ = Clock::now();
    Clock::time_point next_drawing_ = begin_;
};

} // namespace host
