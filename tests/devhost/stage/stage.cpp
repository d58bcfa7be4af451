#include "stage.h"

#include "ipc/instance.h"
#include "logreading/directorywatch.h"

#include <atomic>
#include <fstream>
#include <sstream>
#include <windows.h>

namespace support {

using devhost::store::Type;

namespace {

std::atomic<int> serial{0};

std::filesystem::path uniqueFile(const std::filesystem::path& folder, const char* kind)
{
    return folder / (std::to_string(++serial) + kind);
}

HANDLE createInheritable(const std::filesystem::path& path)
{
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), nullptr, TRUE};
    return CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &attributes,
        CREATE_ALWAYS, 0, nullptr);
}

} // namespace

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::wstring& arguments,
    const std::filesystem::path& outputFolder, void* input)
    : m_outputFile(uniqueFile(outputFolder, ".out")), m_errorFile(uniqueFile(outputFolder, ".err"))
{
    const vx::KernelHandle output(createInheritable(m_outputFile));
    const vx::KernelHandle errors(createInheritable(m_errorFile));
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input;
    startup.hStdOutput = output.get();
    startup.hStdError = errors.get();
    PROCESS_INFORMATION information{};
    auto line = L'"' + (programFolder() / program).native() + L"\" " + arguments;
    EXPECT_TRUE(
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &information))
        << "cannot start a program: error " << GetLastError();
    CloseHandle(information.hThread);
    m_process = std::make_unique<vx::KernelHandle>(information.hProcess);
}

ChildProcess::~ChildProcess()
{
    if (!m_process)
        return;
    TerminateProcess(m_process->get(), 1);
    WaitForSingleObject(m_process->get(), INFINITE);
}

std::optional<unsigned long> ChildProcess::wait(std::chrono::milliseconds timeout) const
{
    DWORD code = 0;
    if (WaitForSingleObject(m_process->get(), static_cast<DWORD>(timeout.count())) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(m_process->get(), &code))
        return std::nullopt;
    return code;
}

std::string ChildProcess::output() const
{
    return readFile(m_outputFile);
}

std::string ChildProcess::errors() const
{
    return readFile(m_errorFile);
}

unsigned long ChildProcess::id() const
{
    return GetProcessId(m_process->get());
}

std::filesystem::path programFolder()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path();
}

TemporaryFolder::TemporaryFolder()
    : m_path(std::filesystem::temp_directory_path() /
             ("tarnhost-test-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++serial)))
{
    std::filesystem::remove_all(m_path);
    std::filesystem::create_directories(m_path);
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string readFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void writeFile(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

Gate::Gate(const std::string& name) : m_name(name + "-" + std::to_string(GetCurrentProcessId())) {}

StageTest::StageTest()
{
    devhost::ipc::exportInstance(instance);
}

void StageTest::installAgent(const std::filesystem::path& where) const
{
    std::filesystem::create_directories(where);
    for (const char* file : {"tarnag.exe", "vx_qrl_meridia_32.dll"})
        std::filesystem::copy_file(
            programFolder() / file, where / file, std::filesystem::copy_options::overwrite_existing);
}

void StageTest::script(const std::vector<json>& runs, json lists) const
{
    lists["runs"] = runs;
    writeFile(agentFolder / "tarnag.script.json", lists.dump());
}

void StageTest::put(const vx::tarn::KeyRow& row, const json& value)
{
    const Type type = devhost::host::typeOfKey(keyOf(row)).value();
    const json plain = type == Type::Object ? json(value.dump()) : value;
    client.set(keyOf(row), Value::fromJson({{"type", vx::toText(type)}, {"value", plain}}));
}

json StageTest::get(const vx::tarn::KeyRow& row)
{
    const auto value = client.get(keyOf(row));
    if (!value)
        return nullptr;
    return value->type() == Type::Object ? json::parse(value->asObject()) : value->toJson().at("value");
}

Texts StageTest::queue()
{
    Texts descriptors;
    for (const json& item : get(settings.installation.deploymentQueue))
        descriptors.push_back(item.at("update_id"));
    return descriptors;
}

void StageTest::putQueue(const Texts& descriptors)
{
    json items = json::array();
    for (const std::string& descriptor : descriptors)
        items.push_back({{"update_id", descriptor}});
    put(settings.installation.deploymentQueue, items);
}

void StageTest::waitFor(
    const std::filesystem::path& changing, const std::string& what, const std::function<bool()>& condition)
{
    std::filesystem::create_directories(changing);
    logreading::DirectoryWatch watch(changing);
    const auto end = std::chrono::steady_clock::now() + deadline / 2;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end)
            FAIL() << "never came: " << what;
        watch.wait(nullptr, 250);
    }
}

} // namespace support
