// Files of many kinds in a folder, and calls of functions on them.
#pragma once

#include "platform/fmwrapper/session.h"
#include "tests/faults/faults.h"
#include "tests/plugin/started_host.h"
#include "tests/support/environment_variable.h"
#include "tests/support/files.h"

#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <regex>
#include <stdexcept>
#include <string>

namespace corvane::test {

class MediaWorld {
public:
    MediaWorld() {
        fm::CurrentSession().drives = {{"C:", folder}};
        host.file_path = u"file:/C:/Untitled.fp7";
        const std::string command =
            "cd '" + folder +
            "' && sox -n -r 44100 -c 2 -b 16 tone.wav synth 0.3 sine 440 vol 0.5 && sox tone.wav -b 24 "
            "deep.wav &&"
            "lame --quiet --ta Band tone.wav tone.mp3 && ffmpeg -v error -i tone.wav tone.m4a &&"
            "/usr/bin/convert -seed 7 -size 40x30 plasma:red-blue -set Title One photo.png &&"
            "for type in jpg gif bmp tga sgi psd jp2 pict tif; do /usr/bin/convert photo.png photo.$type; "
            "done";
        if (std::system(command.c_str()) != 0) throw std::runtime_error(command);
    }

    /// Calls a function with texts; "#1" is the number 1. Names of temporary files are left out of the
    /// result. The resource runs short, or is counted, while the function runs and at no other time.
    Outcome Call(std::int16_t id, std::initializer_list<std::string_view> values,
                 Resource resource = Resource::kMemory, std::int64_t after = 0, std::int64_t number = 0) {
        fm::CurrentSession().answers = {"ok"};
        FM_ExprEnv environment;
        FM_DataVect parameters;
        for (const std::string_view value : values)
            parameters.values.push_back(value.starts_with('#') ? NumberValue(value.substr(1))
                                                               : TextValue(value));
        const auto found = std::ranges::find(host.registered, id, &fm::ExternalFunction::id);
        FM_Data result;
        FM_Error error = kFM_ErrorNone;
        const std::int64_t before = CountCalls(resource);
        {
            const Shortage shortage(resource, after, number);
            error = found->handler(id, environment, parameters, result);
        }
        calls = CountCalls(resource) - before;
        static const std::regex temporary_name("tmp[0-9A-F]+");
        return {error, result.Type(),
                std::regex_replace(utf::ToUtf8(result.AsText().units), temporary_name, "tmp")};
    }

    std::string LastError() { return Call(13, {}).text; }

    /// Empties the temporary folder, and counts what was in it, but for reserved names: files without
    /// contents.
    std::ptrdiff_t TakeTemporaryFiles() const {
        std::ptrdiff_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(temporary)) {
            if (entry.file_size() > 0) ++count;
            remove(entry.path());
        }
        return count;
    }

    std::int64_t calls = 0; ///< of the resource in the last call of a function
    StartedHost host;
    ScratchDrives scratch;
    std::string folder = scratch.MakeFolder("world");
    std::string temporary = scratch.MakeFolder("world/temporary");
    EnvironmentVariable variable{"TMPDIR", temporary};
};

} // namespace corvane::test
