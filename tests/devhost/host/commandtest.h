#pragma once

#include "host/commandline.h"
#include "stage.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace support {

/// The commands run in this process; what has to outlive a command or to run beside one is a process.
class CommandTest : public StageTest {
protected:
    struct Outcome {
        int code;
        std::string output, errors;
    };
    struct Mistake {
        std::string command;
        int code;
        std::string line;
    };

    /// Blanks part the words of `command`; `last` is one more word, as it stands.
    static Outcome call(const std::string& command, const std::optional<std::string>& last = {})
    {
        std::istringstream words(command);
        std::vector<std::string> arguments{std::istream_iterator<std::string>(words), {}};
        arguments.insert(arguments.end(), last ? 1 : 0, last.value_or(""));
        std::ostringstream output, errors;
        const int code = devhost::host::runCommandLine(arguments, output, errors);
        return {code, output.str(), errors.str()};
    }
    static json callJson(const std::string& command) { return json::parse(call("--json " + command).output); }

    static void expectOneLineEach(const std::vector<Mistake>& mistakes)
    {
        for (const auto& mistake : mistakes) {
            SCOPED_TRACE(mistake.command + ": " + mistake.line);
            const auto outcome = call(mistake.command);
            EXPECT_EQ(outcome.code, mistake.code);
            EXPECT_THAT(outcome.errors, testing::StartsWith("tarnhost: "));
            EXPECT_THAT(outcome.errors, testing::HasSubstr(mistake.line));
            EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1) << outcome.errors;
        }
    }
};

} // namespace support
