#pragma once

#include "childprocess.h"
#include "host/commandline.h"
#include "vxtl/str.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <iterator>
#include <sstream>

/// The commands of tarnhost on an instance of its own. They run in this process; what has to outlive a command or
/// to run beside one is a process.
class HostTest : public testing::Test {
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
    Outcome call(const std::string& command, const std::optional<std::string>& last = {}) const
    {
        std::istringstream words("--instance " + instance + " " + command);
        std::vector<std::string> arguments{std::istream_iterator<std::string>(words), {}};
        arguments.insert(arguments.end(), last ? 1 : 0, last.value_or(""));
        std::ostringstream output, errors;
        const int code = devhost::host::runCommandLine(arguments, output, errors);
        return {code, output.str(), errors.str()};
    }

    void expectOneLineEach(const std::vector<Mistake>& mistakes) const
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

    support::ChildProcess start(const std::string& arguments) const
    {
        return {"tarnhost.exe", vx::str::fromUtf8("--instance " + instance + " " + arguments), folder.path()};
    }

    /// A host on the recording plug-in; up when this returns.
    support::ChildProcess startHost(const std::string& options = {}) const
    {
        auto host = start("--json run --plugin \"" + (support::programFolder() / "host-test-plugin.dll").string() +
                          "\" --store \"" + (folder.path() / "store.json").string() + "\" " + options);
        EXPECT_EQ(call("status --wait 60").code, 0) << host.errors();
        return host;
    }

    support::TemporaryFolder folder;
    const std::string instance = folder.path().filename().string();
};
