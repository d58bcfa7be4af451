#include "journal/journal.h"
#include "program/program.h"
#include "vxtl/str.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <windows.h>

namespace {

using devhost::journal::Journal;

constexpr auto description =
    R"(restartprompt: a stand-in for the program that asks a user to reboot.

Asks nobody, whatever its arguments are: each start is a line in restartprompt.runs.jsonl beside the program, with time,
process, session, user, arguments, and the command line as it was given. "tarnhost prompts" shows them.)";

unsigned long ownSession()
{
    DWORD session = 0;
    ProcessIdToSessionId(GetCurrentProcessId(), &session);
    return session;
}

std::string userName()
{
    wchar_t name[256] = L"";
    DWORD size = 256;
    GetUserNameW(name, &size);
    return vx::str::toUtf8(name);
}

} // namespace

int wmain(int count, wchar_t** texts)
{
    const auto arguments = devhost::program::begin(count, texts);
    if (arguments == std::vector<std::string>{"--help"})
        return std::puts(description), 0;
    try {
        Journal(devhost::program::ownFolder() / devhost::journal::restartJournal)
            .append({{"session", ownSession()}, {"user", userName()}, {"arguments", arguments},
                {"command_line", vx::str::toUtf8(GetCommandLineW())}});
        return 0;
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "restartprompt: %s\n", exception.what());
        return 1;
    }
}
