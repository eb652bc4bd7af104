// Any bytes as path text, through every parser and the resolution of a parameter.
#include "files/default_folder.h"
#include "files/path_parameter.h"
#include "fuzz/fuzz_target.h"
#include "platform/fmwrapper/session.h"
#include "plugin/host_data.h"
#include "tests/support/fake_host.h"

void Fuzz(std::string_view text) {
    static corvane::test::FakeHost host;
    static corvane::test::ScratchDrives drives;
    static const bool ready = [] {
        drives.Map("C:", "c");
        drives.Map(R"(\\s\s)", "s");
        drives.MakeFile("c/Data/a.jpg");
        corvane::ResetDefaultFolder();
        return true;
    }();
    if (!ready || text.size() > 65'536) return;

    const corvane::XFileSpec base = corvane::DefaultFolder();
    corvane::XFileSpec spec;
    std::size_t written = 0; // what keeps the texts from being optimised away
    const auto describe = [&] {
        written += spec.GetNativePathW().size() + spec.GetFileMakerPath("file").text.size() +
                   spec.GetRelativePath("file", base).text.size();
        spec.MoveToParent();
    };
    spec.SetFromText(text, &base), describe();
    spec.SetFromFileMakerPath(text, &base, false), describe();
    spec.SetFromNativePath(text), describe();

    const corvane::Data parameter(corvane::Host(FM_Data_Constructor1));
    corvane::SetResultText(*parameter.get(), text);
    corvane::ResolvePathParameter(*parameter.get(), spec), describe();
    Require(written != SIZE_MAX);
}
