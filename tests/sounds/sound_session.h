// A started plug-in, and a folder for the sounds of one test.
#pragma once

#include "tests/plugin/started_host.h"
#include "tests/support/environment_variable.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <thread>

namespace corvane {

struct SoundSession : testing::Test {
    using Clock = std::chrono::steady_clock;
    using milliseconds = std::chrono::milliseconds;

    SoundSession() { host.file_path = u"file:/C:/Untitled.fp7"; }

    static FM_Data Text(const std::string& text) { return test::TextValue(text); }
    /// A file of the folder, as a parameter.
    [[nodiscard]] FM_Data File(const std::string& name) const { return Text("/C:" + folder + "/" + name); }

    std::string Run(std::int16_t id, std::initializer_list<FM_Data> values) {
        return host.CallFunction(id, values).text;
    }
    std::string LastError() { return Run(13, {}); }
    std::string Get(const std::string& tag) { return Run(21, {Text(tag)}); }
    void Set(const std::string& tag, const std::string& value) { Run(23, {Text(tag), Text(value)}); }

    /// Runs shell commands in the folder.
    void Shell(const std::string& commands) const {
        const std::string all = "cd '" + folder + "' && " + commands;
        if (std::system(all.c_str()) != 0) throw std::runtime_error(all);
    }

    /// Does what a host does beside its work, until `done` says so; false when it never does.
    template <class Done>
    static bool PumpUntil(Done done) {
        const auto limit = Clock::now() + std::chrono::seconds(20);
        for (; !done(); std::this_thread::sleep_for(milliseconds(10))) {
            if (Clock::now() > limit) return false;
            if (fm::CurrentSession().dispatch_messages) fm::CurrentSession().dispatch_messages();
        }
        return true;
    }
    static void Pump(milliseconds length) {
        PumpUntil([end = Clock::now() + length] { return Clock::now() >= end; });
    }

    /// The values that a file is filled with.
    template <class Value>
    static std::vector<Value> ReadValues(const std::string& path) {
        const std::string bytes = test::ReadBytes(path);
        std::vector<Value> values(bytes.size() / sizeof(Value));
        std::memcpy(values.data(), bytes.data(), values.size() * sizeof(Value));
        return values;
    }

    test::ScratchDrives scratch; // only its folder is of use: the host's drive C: is the whole machine
    std::string folder = scratch.MakeFolder("work");
    std::string temporary = scratch.MakeFolder("temporary");
    test::StartedHost host;
    test::EnvironmentVariable variable{"TMPDIR", temporary}; // after the host's own folder has been made
};

} // namespace corvane
