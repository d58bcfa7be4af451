#include "common/globalatom/globalatom.h"

#include "logging/logstream.h"

#include <windows.h>

#include <utility>

namespace vx::tarn::common {

GlobalAtom::GlobalAtom(std::wstring name) : m_name(std::move(name)) {}

bool GlobalAtom::exists()
{
    return GlobalFindAtomW(m_name.c_str()) != 0;
}

bool GlobalAtom::create()
{
    VX_LOG_SCOPE();
    if (exists())
        return false;
    if (!GlobalAddAtomW(m_name.c_str())) {
        const DWORD error = GetLastError();
        logging::LogStream(logging::Level::Error)
            << "Failed to add global atom " << m_name << ". Last error code: " << error;
        return false;
    }
    return true;
}

} // namespace vx::tarn::common
