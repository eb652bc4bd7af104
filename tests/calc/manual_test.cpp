// The examples of the manual print what it says they print.
#include "host/commands/results.h"
#include "host/manual/manual.h"
#include "host/session.h"
#include "tests/calc/scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string_view>

namespace {

namespace fs = std::filesystem;

// Whether the text matches line by line; "…" stands for any characters.
bool Matches(std::string_view pattern, std::string_view text) {
    constexpr std::string_view kAny = "…";
    const std::size_t any = pattern.find(kAny);
    if (any == std::string_view::npos) return pattern == text;
    if (!text.starts_with(pattern.substr(0, any))) return false;
    pattern.remove_prefix(any + kAny.size());
    text.remove_prefix(any);
    while (!Matches(pattern, text)) {
        if (text.empty()) return false;
        text.remove_prefix(1);
    }
    return true;
}

// The files that the examples name.
constexpr const char* kMakeFiles = R"(set -e
    mkdir -p home/ann/Archive sounds
    printf hello >home/ann/a.txt
    export PATH=/usr/bin:/bin:$PATH
    convert -size 64x48 gradient:red-blue home/ann/photo.jpg
    convert -size 64x48 gradient:green-blue -set Title Sunset home/ann/photo.png
    convert home/ann/photo.jpg home/ann/a.gif
    convert home/ann/photo.jpg home/ann/a.tif
    convert home/ann/photo.jpg home/ann/photo.png home/ann/pages.tif
    sox -n -r 44100 -c 2 -b 16 sounds/talk.wav synth 120 sine 440 vol 0.4
    sox -n -r 44100 -c 2 -b 16 sounds/short.wav synth 2 sine 440:880 vol 0.4
    lame --quiet --tt Overture --ta Ann sounds/short.wav sounds/intro.mp3)";

// What the example prints, run on copies of the files.
std::string Printed(std::string_view example, const fs::path& files) {
    const calc::ScratchFolder scratch;
    for (const char* folder : {"home", "sounds"})
        fs::copy(files / folder, scratch.Path() / folder, fs::copy_options::recursive);
    host::SessionOptions options;
    options.drives.push_back({"C:", scratch.Path().string(), false});
    options.answers.emplace_back("ok");
    host::Session session(options);
    if (std::string refusal = session.Start(); !refusal.empty()) return refusal;
    const host::Outcome outcome = session.Evaluate(example);
    if (outcome.parse_error) return outcome.parse_error->message;
    std::string printed;
    host::AppendPlain(printed, outcome, false);
    return printed.substr(0, printed.find_last_not_of('\n') + 1);
}

TEST(ManualExamples, AreThereForEveryFunctionAndPrintWhatTheManualSays) {
    const calc::ScratchFolder files;
    ASSERT_EQ(std::system(kMakeFiles), 0);
    for (const host::ManualGroup* group : host::PluginManual()) {
        EXPECT_EQ(group->pages.size(), group->names.size());
        for (const std::string_view name : group->names) {
            const auto page = std::ranges::find(group->pages, name, &host::ManualPage::name);
            if (page == group->pages.end() || page->example.empty() || page->output.empty()) {
                ADD_FAILURE() << name << " has no page with an example";
                continue;
            }
            const std::string printed = Printed(page->example, files.Path());
            EXPECT_TRUE(Matches(page->output, printed)) << name << " prints\n"
                                                        << printed << "\nnot\n"
                                                        << page->output;
        }
    }
}

} // namespace
