#include "program/program.h"

#include "vxtl/str.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace devhost::program {

namespace {

std::wstring ownPath()
{
    wchar_t path[MAX_PATH];
    return {path, GetModuleFileNameW(nullptr, path, MAX_PATH)};
}

bool isBlank(wchar_t c)
{
    return c == L' ' || c == L'\t';
}

bool standsUnquotedAtHead(const std::wstring& path, std::wstring_view line)
{
    return line.size() >= path.size() && (line.size() == path.size() || isBlank(line[path.size()])) &&
           CompareStringOrdinal(line.data(), static_cast<int>(path.size()), path.data(), static_cast<int>(path.size()),
               TRUE) == CSTR_EQUAL;
}

int wordsIn(const std::wstring& text)
{
    int words = 0;
    for (std::size_t i = 0; i < text.size(); ++i)
        words += !isBlank(text[i]) && (i == 0 || isBlank(text[i - 1])) ? 1 : 0;
    return words;
}

/// How many of the command line's texts are the program's path: the run-time library cuts at each blank.
int textsOfPath()
{
    const auto path = ownPath();
    return standsUnquotedAtHead(path, GetCommandLineW()) ? wordsIn(path) : 1;
}

} // namespace

std::vector<std::string> begin(int count, wchar_t** texts)
{
    // Without it a dialog that nobody answers would keep the process.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetConsoleOutputCP(CP_UTF8);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    std::vector<std::string> arguments;
    for (int i = textsOfPath(); i < count; ++i)
        arguments.push_back(vx::str::toUtf8(texts[i]));
    return arguments;
}

std::filesystem::path ownFolder()
{
    return std::filesystem::path(ownPath()).parent_path();
}

} // namespace devhost::program
