// Runs every .calc file below this folder as a test of its own.
#include "host/session.h"
#include "platform/fmwrapper/fault.h"
#include "platform/text/utf.h"
#include "tests/calc/calc_file.h"
#include "tests/calc/scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <regex>
#include <sstream>

namespace calc {
namespace {

namespace fs = std::filesystem;

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

// A text as the files write it: ¶ for a carriage return.
std::string Written(std::string text) {
    return Replaced(std::move(text), "\r", "¶");
}

// "JPEG 5123 SIZE 8"; a blank inside a type is written "_".
std::string StreamList(const FM_BinaryData& container) {
    std::string list;
    for (const fm::Stream& stream : container.streams) {
        if (!list.empty()) list += ' ';
        for (int shift = 24; shift >= 0; shift -= 8) {
            const char character = static_cast<char>(stream.type >> shift & 0xFF);
            list += character == ' ' ? '_' : character;
        }
        list += ' ' + std::to_string(stream.bytes->size());
    }
    return list;
}

// Word by word; "*" stands for any word.
bool SameWords(const std::string& expected, const std::string& got) {
    using Words = std::istream_iterator<std::string>;
    std::istringstream expected_words(expected);
    std::istringstream got_words(got);
    return std::equal(Words(expected_words), Words(), Words(got_words), Words(),
                      [](const std::string& a, const std::string& b) { return a == "*" || a == b; });
}

// The output of a command, its last line end dropped. A command that fails gives nothing.
std::optional<std::string> Output(const std::string& command) {
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return std::nullopt;
    std::string output;
    std::array<char, 4096> buffer{};
    for (std::size_t count = 0; (count = fread(buffer.data(), 1, buffer.size(), pipe)) > 0;)
        output.append(buffer.data(), count);
    if (pclose(pipe) != 0) return std::nullopt;
    if (!output.empty() && output.back() == '\n') output.pop_back();
    return Replaced(output, "\n", "\r");
}

std::string Complaint(const host::Outcome& outcome) {
    if (!outcome.parse_error) return "no parse error";
    const host::ParseError& error = *outcome.parse_error;
    return std::to_string(error.line) + ":" + std::to_string(error.column) + " " + error.message;
}

// What an expectation of this kind is about.
std::string Aspect(const host::Outcome& outcome, char kind) {
    const bool is_container = outcome.value.Type() == kFM_TypeContainer;
    switch (kind) {
    case '?': return std::to_string(outcome.error);
    case '!': return Complaint(outcome);
    case '@': return is_container ? StreamList(outcome.value.AsContainer()) : "no container";
    default: return Written(utf::ToUtf8(outcome.value.AsText().units));
    }
}

host::SessionOptions SessionOptionsOf(const File& file, const fs::path& drive_c) {
    host::SessionOptions options;
    options.database = "file:/C:/Untitled.fp7";
    options.drives.push_back({"C:", drive_c.string(), false});
    for (const auto& [name, value] : file.options) {
        if (name == "database") {
            options.database = value;
        } else if (name == "drive") {
            const auto drive = fm::ParseDrive(value);
            if (!drive) throw std::runtime_error("no drive: " + value);
            fs::create_directories(drive->folder);
            std::erase_if(options.drives, [&](const fm::Drive& other) { return other.root == drive->root; });
            options.drives.push_back(*drive);
        } else if (name == "answer") {
            options.answers.push_back(value);
        } else if (name == "interface-version") {
            options.interface_version = static_cast<std::int16_t>(std::stoi(value));
        } else if (name == "host-version") {
            options.host_version = value;
        } else {
            throw std::runtime_error("no such option: " + name);
        }
    }
    return options;
}

class CalculationTest : public testing::Test {
public:
    explicit CalculationTest(fs::path path) : path_(std::move(path)) {}

    void TestBody() override {
        try {
            const File file = Parse(corvane::test::ReadBytes(path_));
            if (file.steps.empty()) throw FormatError(1, "nothing is tested here");
            const std::int64_t objects = fm::LiveObjects();
            Run(file);
            EXPECT_EQ(fm::LiveObjects(), objects) << "host objects are left over at the end of the session";
        } catch (const FormatError& error) {
            Fail(error.line, error.what());
        } catch (const std::exception& error) {
            Fail(1, error.what());
        }
    }

private:
    void Fail(std::size_t line, const std::string& message) const {
        ADD_FAILURE_AT(path_.c_str(), static_cast<int>(line)) << message;
    }

    void FailStep(const Step& step, std::size_t line, const std::string& got, const std::string& expected) {
        Fail(line, std::string(1, step.kind) + " " + step.text + "\n  got:      " + got +
                       "\n  expected: " + expected);
    }

    void Run(const File& file) {
        const ScratchFolder scratch;
        host::Session session(SessionOptionsOf(file, scratch.Path()));
        const std::string refusal = session.Start();
        if (!refusal.empty()) return Fail(1, refusal);
        for (const Step& step : file.steps) {
            if (step.kind == '>') {
                CheckCalculation(step, session.Evaluate(step.text));
            } else if (const auto output = Output(step.text)) {
                for (const Expectation& expectation : step.expectations)
                    Check(step, expectation, Written(*output));
            } else {
                return Fail(step.line, "$ " + step.text + "\n  failed"); // what follows may rest on it
            }
        }
    }

    void Check(const Step& step, const Expectation& expectation, const std::string& got) {
        bool met = got == expectation.text;
        if (expectation.kind == '~') met = std::regex_search(got, std::regex(expectation.text));
        if (expectation.kind == '@') met = SameWords(expectation.text, got);
        if (!met) FailStep(step, expectation.line, got, expectation.kind + (" " + expectation.text));
    }

    void CheckCalculation(const Step& step, const host::Outcome& outcome) {
        const auto has = [&](char kind) {
            return std::ranges::count(step.expectations, kind, &Expectation::kind) > 0;
        };
        if (outcome.parse_error && !has('!'))
            return FailStep(step, step.line, "! " + Complaint(outcome), "a calculation that parses");
        if (outcome.error != 0 && !has('?'))
            FailStep(step, step.line, "? " + std::to_string(outcome.error) + " " + outcome.message, "? 0");
        for (const Expectation& expectation : step.expectations)
            Check(step, expectation, Aspect(outcome, expectation.kind));
        if (step.expectations.empty() && !outcome.value.IsEmpty())
            FailStep(step, step.line, Aspect(outcome, '='), "an empty result, as nothing is expected");
    }

    fs::path path_;
};

void RegisterFiles(const fs::path& folder) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.path().extension() == ".calc") files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) {
        const std::string family = file.parent_path().filename().string();
        testing::RegisterTest(family.c_str(), file.stem().c_str(), nullptr, nullptr, file.c_str(), 1,
                              [file]() -> testing::Test* { return new CalculationTest(file); });
    }
}

} // namespace
} // namespace calc

int main(int argument_count, char** arguments) {
    // The distribution's own tools make the samples, whatever else is installed.
    const char* path = std::getenv("PATH");
    setenv("PATH", ("/usr/bin:/bin:" + std::string(path == nullptr ? "" : path)).c_str(), 1);
    testing::InitGoogleTest(&argument_count, arguments);
    calc::RegisterFiles(CALC_FOLDER);
    return RUN_ALL_TESTS();
}
