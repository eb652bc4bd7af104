#include "tests/calc/calc_file.h"

namespace calc {
namespace {

// The text behind a line's mark and its blank.
std::string Rest(std::string_view line) {
    if (line.size() > 1 && line[1] != ' ') return {};
    return std::string(line.substr(std::min<std::size_t>(line.size(), 2)));
}

bool IsContinuation(std::string_view line) {
    return line.substr(0, 2) == "  ";
}

void AddExpectation(Step& step, std::size_t number, std::string_view line) {
    const char kind = line[0];
    if (step.kind == '$' && kind != '=' && kind != '~')
        throw FormatError(number, "a command has no other expectations than = and ~");
    if (kind == '=' && !step.expectations.empty() && step.expectations.back().kind == '=') {
        step.expectations.back().text += "¶" + Rest(line);
    } else {
        step.expectations.push_back({number, kind, Rest(line)});
    }
}

void AddOption(File& file, std::size_t number, std::string_view line) {
    const std::string option = Rest(line);
    const auto blank = option.find(' ');
    if (blank == std::string::npos) throw FormatError(number, "an option without a value");
    if (!file.steps.empty()) throw FormatError(number, "options stand before the first step");
    file.options.emplace_back(option.substr(0, blank), option.substr(blank + 1));
}

} // namespace

File Parse(std::string_view text) {
    File file;
    std::size_t number = 0;
    bool continues = false; // the line before may go on
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string_view line = text.substr(start, end - start);
        start = end + 1;
        ++number;
        const bool may_continue = continues;
        continues = false;
        if (line.empty() || line[0] == '#') continue;
        if (line.size() > 1 && line[1] != ' ') throw FormatError(number, "no blank behind the mark");
        if (IsContinuation(line)) {
            if (!may_continue) throw FormatError(number, "nothing here to continue");
            file.steps.back().text += "\n" + std::string(line.substr(2));
            continues = true;
        } else if (line[0] == '%') {
            AddOption(file, number, line);
        } else if (line[0] == '>' || line[0] == '$') {
            file.steps.push_back({number, line[0], Rest(line), {}});
            continues = true;
        } else if (std::string_view("=~?!@").find(line[0]) != std::string_view::npos) {
            if (file.steps.empty()) throw FormatError(number, "an expectation without a calculation");
            AddExpectation(file.steps.back(), number, line);
        } else {
            throw FormatError(number, "no line of this kind is known");
        }
    }
    return file;
}

} // namespace calc
