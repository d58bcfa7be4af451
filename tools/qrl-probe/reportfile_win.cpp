#include "qrl-probe/reportfile.h"

#include "vxtl/handle.h"
#include "vxtl/str.h"

#include <windows.h>

namespace tools::qrlprobe {

namespace {

constexpr auto variable = L"QRL_PROBE_REPORT";
constexpr auto fileName = L"qrl-probe.report.txt";

std::wstring pathOf(HMODULE module)
{
    std::wstring path(0x8000, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

HMODULE ownModule()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<const wchar_t*>(&ownModule), &module);
    return module;
}

std::wstring pathFromEnvironment()
{
    std::wstring path(0x8000, L'\0');
    path.resize(GetEnvironmentVariableW(variable, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

// From the folder that is the current one now: a host may go elsewhere.
std::wstring absolute(const std::wstring& path)
{
    std::wstring full(0x8000, L'\0');
    full.resize(GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full;
}

} // namespace

ReportFile::ReportFile() : m_path(pathFromEnvironment())
{
    if (m_path.empty()) {
        const auto library = pathOf(ownModule());
        m_path = library.substr(0, library.find_last_of(L'\\') + 1) + fileName;
    }
    m_path = absolute(m_path);
    m_path.shrink_to_fit();
}

// Never emptied first: whoever reads it meanwhile, or after a crash right here, is to find one report or the other.
bool ReportFile::write(const std::string& text) const noexcept
{
    const vx::KernelHandle file(CreateFileW(m_path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
        OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    return file.isValid() && WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
           written == text.size() && SetEndOfFile(file.get());
}

std::string describeProcess()
{
    return vx::str::toUtf8Lossy(pathOf(nullptr)) + ", process " + std::to_string(GetCurrentProcessId());
}

void showInDebugger(const std::string& line)
{
    OutputDebugStringA(("qrl-probe: " + line + "\n").c_str());
}

} // namespace tools::qrlprobe
