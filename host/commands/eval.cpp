#include "host/commands/commands.h"
#include "host/commands/json.h"
#include "host/commands/output.h"
#include "host/commands/results.h"
#include "host/line_reader.h"

#include <string_view>
#include <unistd.h>

namespace host {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF"; // some editors begin files with it

class Evaluator {
public:
    Evaluator(Session& session, const CommandLine& line) : session_(session), line_(line) {}

    // False when the command has to end: the status says why.
    bool Run(std::string_view calculation, std::size_t first_line) {
        ++number_;
        const Outcome outcome = session_.Evaluate(calculation);
        if (outcome.parse_error) {
            output_.Complain(ParseErrorReport(calculation, *outcome.parse_error, first_line));
            status_ = kUsageError;
            return false;
        }
        if (line_.json) {
            output_.Buffer() += JsonOf(calculation, outcome);
            output_.Buffer() += '\n';
        } else {
            AppendPlain(output_.Buffer(), outcome, line_.raw);
        }
        output_.EndPiece();
        if (outcome.error != kFM_ErrorNone && !line_.json)
            output_.Complain("error " + std::to_string(outcome.error) + '\n');
        if (!outcome.message.empty()) output_.Complain("corvane: " + outcome.message + '\n');
        if (line_.strict && status_ == 0 && IsFailure(outcome)) status_ = 1;
        return Save(outcome.value) && output_.Good();
    }

    // Its result need not wait for those that follow, which may take long.
    bool RunArgument(std::string_view calculation) {
        const bool going = Run(calculation, 1);
        output_.Flush();
        return going;
    }

    bool RunLines() {
        LineReader lines(STDIN_FILENO, LineReader::kMaxLine, [this] { output_.Flush(); });
        std::size_t line_number = 0;
        while (auto line = lines.Line()) {
            ++line_number;
            if (line_number == 1 && line->starts_with(kByteOrderMark))
                line->remove_prefix(kByteOrderMark.size());
            const bool blank = line->find_first_not_of(" \t\r") == std::string_view::npos;
            if (!blank && line->front() != '#' && !Run(*line, line_number)) return false;
        }
        const std::string problem = lines.Problem(line_number + 1);
        if (problem.empty()) return true;
        output_.Complain("corvane: " + problem + '\n');
        status_ = kUsageError;
        return false;
    }

    int Finish() {
        output_.Flush();
        return output_.Good() ? status_ : kUsageError;
    }

private:
    bool Save(const FM_Data& value) {
        if (line_.save_streams.empty()) return true;
        const std::string problem = SaveStreams(line_.save_streams, number_, value);
        if (problem.empty()) return true;
        output_.Complain("corvane: " + problem + '\n');
        status_ = kUsageError;
        return false;
    }

    Session& session_;
    const CommandLine& line_;
    Output output_{line_.raw};
    std::size_t number_ = 0;
    int status_ = 0;
};

} // namespace

int Eval(Session& session, const CommandLine& line) {
    Evaluator evaluator(session, line);
    bool going = true;
    if (line.arguments.empty()) going = evaluator.RunLines();
    for (std::size_t i = 0; going && i < line.arguments.size(); ++i)
        going = line.arguments[i] == "-" ? evaluator.RunLines() : evaluator.RunArgument(line.arguments[i]);
    return evaluator.Finish();
}

} // namespace host
