#include "bench/datafolder.h"

#include <windows.h>

namespace bench {

DataFolder::DataFolder()
    : m_path(std::filesystem::temp_directory_path() / ("tarnhd-bench-" + std::to_string(GetCurrentProcessId())))
{
    std::filesystem::remove_all(m_path);
    std::filesystem::create_directories(m_path);
    SetEnvironmentVariableW(L"ProgramData", m_path.c_str());
}

DataFolder::~DataFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace bench
