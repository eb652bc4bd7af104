// A fake host that has an executable with a version, and drives the plug-in's entry point.
#pragma once

#include "platform/fmwrapper/session.h"
#include "tests/support/calls.h"
#include "tests/support/fake_host.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

extern "C" void FMExternCallProc(FM_CallBlock* block);

namespace corvane::test {

class EntryHost : public FakeHost {
public:
    explicit EntryHost(FM_EntryPoint entry = FMExternCallProc) : entry_(entry) {
        fm::Session& session = fm::CurrentSession();
        session.drives = {{"C:", ""}};
        session.application_file = drives_.MakeFile("host");
        session.application_version = "10.0v1";
        block.interface_version = 51;
        block.instance = this;
    }

    void Send(FM_CallSelector selector) {
        block.selector = selector;
        entry_(&block);
    }

    /// Its answer; what is registered and unregistered counts from here.
    std::intptr_t StartUp() {
        registered.clear();
        unregistered.clear();
        block.result = 0;
        Send(kFM_CallStartUp);
        return block.result;
    }

    /// The string that the plug-in writes into a buffer of so many units, which is checked to stay within.
    std::u16string GetString(std::uint8_t which, std::size_t capacity = 256) {
        std::vector<char16_t> buffer(capacity + 4, u'#');
        block.parameter1 = which;
        block.parameter3 = static_cast<std::uint32_t>(capacity);
        block.result = reinterpret_cast<std::intptr_t>(buffer.data());
        Send(kFM_CallGetString);
        if (buffer[0] == u'#' ||
            std::count(buffer.begin() + static_cast<std::ptrdiff_t>(capacity), buffer.end(), u'#') != 4)
            return u"#";
        return buffer.data();
    }

    /// Calls a registered function as a calculation does.
    Outcome CallFunction(std::int16_t id, std::initializer_list<FM_Data> values) {
        const auto found = std::find_if(registered.begin(), registered.end(),
                                        [id](const fm::ExternalFunction& f) { return f.id == id; });
        return found == registered.end() ? Outcome{} : Call(found->handler, values, id);
    }

private:
    FM_EntryPoint entry_;
    ScratchDrives drives_;
};

class StartedHost : public EntryHost {
public:
    StartedHost() { StartUp(); }
    ~StartedHost() override { Send(kFM_CallShutdown); }
};

} // namespace corvane::test
