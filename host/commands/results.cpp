#include "host/commands/results.h"

#include "host/engine/error_text.h"
#include "host/engine/stream_type.h"
#include "platform/text/utf.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

namespace host {
namespace {

void AppendLines(std::string& output, std::u16string_view text) {
    const std::size_t begin = output.size();
    output += utf::ToUtf8(text);
    for (std::size_t i = begin; i < output.size(); ++i)
        if (output[i] == '\r') output[i] = '\n';
    output += '\n';
}

// A type as the end of a file name.
std::string NameOfType(std::uint32_t type) {
    std::string name = StreamTypeText(type);
    for (char& character : name) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte <= ' ' || byte == 0x7F || character == '/') character = '_';
    }
    return name;
}

std::string WriteFile(const std::string& path, const fm::Bytes& bytes) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wb"), std::fclose);
    const bool written = file != nullptr &&
                         std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size() &&
                         std::fflush(file.get()) == 0;
    return written ? "" : "cannot write " + path + ": " + std::strerror(errno);
}

} // namespace

void AppendPlain(std::string& output, const Outcome& outcome, bool raw) {
    const FM_Data& value = outcome.value;
    if (outcome.error != kFM_ErrorNone) {
        output += "?\n";
    } else if (value.Type() == kFM_TypeContainer) {
        const FM_BinaryData& container = value.AsContainer();
        output += "container\n";
        for (const fm::Stream& stream : container.streams)
            output +=
                "  " + StreamTypeText(stream.type) + ' ' + std::to_string(stream.bytes->size()) + " bytes\n";
        if (container.streams.empty() && !container.reference.empty())
            AppendLines(output, container.reference);
    } else if (raw && value.Type() == kFM_TypeText) {
        output += utf::ToUtf8(value.AsText().units);
    } else {
        AppendLines(output, value.AsText().units);
    }
}

bool IsFailure(const Outcome& outcome) {
    if (outcome.error != kFM_ErrorNone) return true;
    const auto error = ParseErrorText(outcome.value);
    return error && error->code != 0;
}

std::string SaveStreams(const std::string& folder, std::size_t number, const FM_Data& value) {
    if (value.Type() != kFM_TypeContainer) return {};
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) return "cannot make the folder " + folder + ": " + error.message();
    const std::vector<fm::Stream>& streams = value.AsContainer().streams;
    for (std::size_t i = 0; i < streams.size(); ++i) {
        std::string path = folder + '/' + std::to_string(number) + '-';
        path += std::to_string(i) + '-' + NameOfType(streams[i].type);
        if (std::string problem = WriteFile(path, *streams[i].bytes); !problem.empty()) return problem;
    }
    return {};
}

std::string ParseErrorReport(std::string_view calculation, const ParseError& error, std::size_t first_line) {
    std::string_view line = calculation;
    for (std::size_t i = 1; i < error.line; ++i) {
        const auto end = line.find_first_of("\r\n");
        line.remove_prefix(end + (line.substr(end).starts_with("\r\n") ? 2 : 1));
    }
    line = line.substr(0, line.find_first_of("\r\n"));
    std::string mark;
    std::size_t at = 0;
    for (std::size_t i = 1; i < error.column && at < line.size(); ++i)
        mark += utf::Next(line, at) == U'\t' ? '\t' : ' '; // a tab keeps its width in the line below
    return "corvane: " + std::to_string(first_line + error.line - 1) + ':' + std::to_string(error.column) +
           ": " + error.message + '\n' + std::string(line) + '\n' + mark + "^\n";
}

} // namespace host
