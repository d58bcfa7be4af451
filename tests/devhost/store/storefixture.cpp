#include "storefixture.h"

#include <filesystem>
#include <fstream>

#include <windows.h>

using namespace devhost::store;

namespace {

std::wstring uniqueName()
{
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    return std::wstring(test.begin(), test.end()) + L"." + std::to_wstring(GetCurrentProcessId());
}

std::wstring testFolder(const std::wstring& name)
{
    return (std::filesystem::temp_directory_path() / (L"store-" + name)).wstring();
}

} // namespace

StoreTest::StoreTest()
    : instance(uniqueName()), folder(testFolder(instance)), file(folder + L"\\sub\\store.json"), server(file, instance),
      tool(instance), client(instance, Role::Application)
{
    std::filesystem::remove_all(folder);
}

StoreTest::~StoreTest()
{
    server.stop();
    for (const auto& child : m_children)
        killChild(child);
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

vx::SharedHandle StoreTest::startChild(const std::wstring& arguments)
{
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring commandLine = L"\"" + std::wstring(program) + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    EXPECT_TRUE(
        CreateProcessW(program, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
    CloseHandle(process.hThread);
    return m_children.emplace_back(std::make_shared<vx::KernelHandle>(process.hProcess));
}

void StoreTest::writeFile(const std::string& content) const
{
    std::filesystem::create_directories(std::filesystem::path(file).parent_path());
    std::ofstream(std::filesystem::path(file), std::ios::binary) << content;
}

std::string StoreTest::readFile() const
{
    std::ifstream stream(std::filesystem::path(file), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void killChild(const vx::SharedHandle& process)
{
    TerminateProcess(process->get(), 1);
    awaitChild(process);
}

unsigned long awaitChild(const vx::SharedHandle& process)
{
    DWORD code = STILL_ACTIVE;
    WaitForSingleObject(process->get(), 30000);
    GetExitCodeProcess(process->get(), &code);
    return code;
}

void Heard::add(const std::string& name)
{
    const std::lock_guard lock(m_mutex);
    m_names.push_back(name);
    m_changed.notify_all();
}

std::size_t Heard::count()
{
    const std::lock_guard lock(m_mutex);
    return m_names.size();
}

bool Heard::await(std::size_t count)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, deadline, [&] { return m_names.size() >= count; });
}
